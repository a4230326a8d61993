// Has Chromium run a script in the page that writes what it sees into the document.
#include "unit/tools/browser.h"

#include <cstdlib>
#include <stdexcept>

#include "linux/json_text.h"

namespace orvex::tools {
namespace {

const char kWatch[] = R"(<script>
window.problems = [];
addEventListener('error', event => problems.push(event.message));
addEventListener('securitypolicyviolation', event => problems.push(event.violatedDirective));
</script>)";

const char kLook[] = R"(<script>
const bufferAt = (svg, x) => {
  const frame = svg.querySelector('.frame').getBoundingClientRect();
  return +svg.dataset.from + (x - frame.left) / frame.width * (svg.dataset.to - svg.dataset.from);
};
const middleOf = element => {
  const box = element.getBoundingClientRect();
  return box.left + box.width / 2;
};
const lookAtCurve = (svg, path) => {
  const frame = svg.querySelector('.frame').getBoundingClientRect();
  const box = path.getBoundingClientRect();
  const points = [...path.getAttribute('d').matchAll(/[ML]([\d.]+) ([\d.]+)/g)].map(point => [+point[1], +point[2]]);
  const peak = points.reduce((best, point) => point[1] < best[1] ? point : best, [0, Infinity]);
  const scale = svg.getBoundingClientRect().width / svg.viewBox.baseVal.width;
  return {
    label: path.dataset.label, points: points.length, colour: getComputedStyle(path).stroke,
    peak: bufferAt(svg, svg.getBoundingClientRect().left + peak[0] * scale),
    isInside: path.getTotalLength() > 0 && box.left >= frame.left - 2 && box.right <= frame.right + 2 &&
        box.top >= frame.top - 2 && box.bottom <= frame.bottom + 2
  };
};
const lookAtPair = (svg, pair) => {
  const [first, second] = ['.first', '.second'].map(name => pair.querySelector(name));
  const span = pair.querySelector('.span').getBoundingClientRect();
  return { first: bufferAt(svg, first ? middleOf(first) : span.left),
           second: bufferAt(svg, second ? middleOf(second) : span.right) };
};
const isShown = element =>
    getComputedStyle(element).visibility == 'visible' && element.getBoundingClientRect().width > 0;
const shownTexts = svg => [...svg.querySelectorAll('text')].filter(isShown);
const findOverlaps = svg => {
  const texts = shownTexts(svg).map(text => [text.textContent, text.getBoundingClientRect()]);
  return texts.flatMap(([name, a], i) => texts.slice(i + 1).filter(([, b]) =>
      a.left < b.right - 1 && b.left < a.right - 1 && a.top < b.bottom - 3 && b.top < a.bottom - 3)
      .map(([other]) => `${svg.id}: ${name} / ${other}`));
};
const findCut = svg => {
  const around = svg.getBoundingClientRect();
  return [...svg.querySelectorAll('text, .marks path, .points, .interval')].filter(part => {
    const box = part.getBoundingClientRect();
    return box.left < around.left - 1 || box.right > around.right + 1 || box.top < around.top - 1 ||
        box.bottom > around.bottom + 1;
  }).map(part => `${svg.id}: ${part.textContent || part.getAttribute('class')}`);
};
const heightOfText = text => parseFloat(getComputedStyle(text).fontSize) * (text.ownerSVGElement ?
    text.ownerSVGElement.getBoundingClientRect().width / text.ownerSVGElement.viewBox.baseVal.width : 1);
const colourOf = text => text.match(/[\d.]+/g).map(Number);
const groundOf = element => {
  for (; element; element = element.parentElement) {
    const colour = colourOf(getComputedStyle(element).backgroundColor);
    if (colour.length == 3 || colour[3] == 1) return colour;
  }
  return [255, 255, 255];
};
const luminance = colour => colour.slice(0, 3).map(c => c / 255)
    .map(c => c <= 0.03928 ? c / 12.92 : ((c + 0.055) / 1.055) ** 2.4)
    .reduce((sum, c, n) => sum + c * [0.2126, 0.7152, 0.0722][n], 0);
const contrastOf = element => {
  const style = getComputedStyle(element);
  const a = luminance(colourOf(element.ownerSVGElement ? style.fill : style.color));
  const b = luminance(groundOf(element));
  return (Math.max(a, b) + 0.05) / (Math.min(a, b) + 0.05);
};
for (const details of document.querySelectorAll('details')) details.open = true;
const written = [...document.body.querySelectorAll('*')].filter(element =>
    !['SCRIPT', 'title', 'desc'].includes(element.tagName) && isShown(element) &&
    [...element.childNodes].some(node => node.nodeType == Node.TEXT_NODE && node.data.trim()));
const isReached = element => {
  element.focus();
  return document.activeElement == element;
};
const texts = selector => [...document.querySelectorAll(selector)].map(element => element.textContent);
const seen = {
  errors: problems, resources: performance.getEntriesByType('resource').length,
  overflow: document.documentElement.scrollWidth - innerWidth, overlaps: [], cut: [],
  paper: getComputedStyle(document.body).backgroundColor,
  faint: written.filter(element => contrastOf(element) < 4.5).map(element => element.textContent),
  small: written.filter(element => heightOfText(element) < 11.5).map(element => element.textContent),
  unreached: [...document.querySelectorAll('.scroll, summary, a')].filter(element => !isReached(element))
      .map(element => element.textContent.slice(0, 50)),
  headline: texts('.decision h2, .decision h3')[0], reasons: texts('.decision li'), title: texts('h1')[0],
  facts: {}, charts: {}
};
for (const fact of document.querySelectorAll('.facts div')) {
  seen.facts[fact.querySelector('dt').textContent] = fact.querySelector('dd').textContent;
}
for (const svg of document.querySelectorAll('svg.chart')) {
  const marks = {};
  for (const group of svg.querySelectorAll('.marks')) {
    marks[group.getAttribute('class').replace('marks ', '')] = [...group.children].map(mark => bufferAt(svg, middleOf(mark)));
  }
  seen.charts[svg.id] = {
    curves: [...svg.querySelectorAll('.curve')].map(path => lookAtCurve(svg, path)),
    pairs: [...svg.querySelectorAll('.pair')].filter(pair => pair.tagName == 'g' && !pair.classList.contains('further')).map(pair => lookAtPair(svg, pair)),
    thresholds: svg.querySelectorAll('path.threshold').length, marks,
    uprights: [...svg.querySelectorAll('path.upright.onset, path.upright.end')].map(line => bufferAt(svg, middleOf(line))),
    intervals: [...svg.querySelectorAll('.interval')].map(group => {
      const bar = group.querySelector('.bar').getBoundingClientRect();
      return { from: bufferAt(svg, bar.left), to: bufferAt(svg, bar.right), dot: bufferAt(svg, middleOf(group.querySelector('circle'))) };
    })
  };
  seen.overlaps.push(...findOverlaps(svg));
  seen.cut.push(...findCut(svg));
}
seen.readouts = texts('.readout text');
seen.shownReadouts = [...document.querySelectorAll('.readout text')].filter(isShown).length;
const result = document.createElement('pre');
result.id = 'seen';
result.textContent = JSON.stringify(seen);
document.body.append(result);
</script>)";

std::string Replaced(std::string text, const std::string& what, const std::string& by) {
  const std::size_t at = text.find(what);
  if (at == std::string::npos) {
    throw std::runtime_error("the page lacks " + what);
  }
  return text.replace(at, what.size(), by);
}

}  // namespace

bool HasBrowser() {
  return std::system("command -v chromium >/dev/null") == 0;
}

Json::Value LookAt(const std::string& page, const Window& window, const TemporaryFolder& folder) {
  const std::string policy = "default-src 'none';";
  std::string watched = Replaced(page, policy, policy + " script-src 'unsafe-inline';");
  watched = Replaced(watched, "<title>", kWatch + std::string("<title>"));
  folder.Write("page.html", Replaced(watched, "</body>", kLook + std::string("</body>")));
  const std::string command =
      "cd '" + folder.Path() + "' && HOME=\"$PWD\" timeout 60 chromium --headless --no-sandbox --disable-gpu" +
      " --disable-dev-shm-usage --user-data-dir=\"$PWD/profile\" --blink-settings=preferredColorScheme=" +
      (window.isDark ? "0" : "1") + " --window-size=" + std::to_string(window.width) +
      ",900 --dump-dom \"file://$PWD/page.html\" >dom 2>errors";
  if (std::system(command.c_str()) != 0) {
    throw std::runtime_error("chromium failed: " + folder.Read("errors"));
  }
  const std::string dom = folder.Read("dom");
  const std::string tag = "<pre id=\"seen\">";
  const std::size_t tagBegin = dom.find(tag);
  const std::size_t end = dom.find("</pre>", tagBegin);
  if (tagBegin == std::string::npos || end == std::string::npos) {
    throw std::runtime_error("the script did not run: " + folder.Read("errors"));
  }
  const std::size_t begin = tagBegin + tag.size();
  return port::ParseJson(dom.substr(begin, end - begin));
}

}  // namespace orvex::tools
