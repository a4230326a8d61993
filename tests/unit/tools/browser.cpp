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
const findOverlaps = svg => {
  const texts = [...svg.querySelectorAll('text')].map(text => [text.textContent, text.getBoundingClientRect()]);
  return texts.flatMap(([name, a], i) => texts.slice(i + 1).filter(([, b]) =>
      a.left < b.right - 1 && b.left < a.right - 1 && a.top < b.bottom - 3 && b.top < a.bottom - 3)
      .map(([other]) => `${svg.id}: ${name} / ${other}`));
};
const texts = selector => [...document.querySelectorAll(selector)].map(element => element.textContent);
const seen = {
  errors: problems, resources: performance.getEntriesByType('resource').length,
  overflow: document.documentElement.scrollWidth - innerWidth, overlaps: [],
  headline: texts('#decision h2')[0], reasons: texts('#decision li'), title: texts('h1')[0], facts: {}, charts: {}
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
}
const tones = document.getElementById('whole-tones');
const frame = tones.querySelector('.frame').getBoundingClientRect();
tones.dispatchEvent(new PointerEvent('pointermove', {
  bubbles: true, clientX: frame.left + (POINT_AT - tones.dataset.from) / (tones.dataset.to - tones.dataset.from) * frame.width
}));
seen.readout = texts('.readout')[0];
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

Json::Value LookAt(const std::string& page, int width, int pointAt, const TemporaryFolder& folder) {
  const std::string look = Replaced(kLook, "POINT_AT", std::to_string(pointAt));
  folder.Write("page.html",
               Replaced(Replaced(page, "<title>", kWatch + std::string("<title>")), "</body>", look + "</body>"));
  const std::string command =
      "cd '" + folder.Path() + "' && HOME=\"$PWD\" timeout 60 chromium --headless --no-sandbox --disable-gpu" +
      " --disable-dev-shm-usage --user-data-dir=\"$PWD/profile\" --window-size=" + std::to_string(width) +
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
