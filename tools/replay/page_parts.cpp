// Style, cursor, legends and notes of the page.
#include "replay/page_parts.h"

namespace orvex::tools {

// The Content-Security-Policy makes the browser refuse to load anything from outside the page.
const char kPageBegin[] = R"(<!DOCTYPE html>
<html lang="en">
<head>
<meta charset="utf-8">
<meta http-equiv="Content-Security-Policy"
      content="default-src 'none'; style-src 'unsafe-inline'; script-src 'unsafe-inline'">
<meta name="viewport" content="width=device-width">
)";

const char kPageStyle[] = R"(
:root { color-scheme: light; --f17: #0b5cad; --f19: #c2410c; --f175: #0f766e; --f18: #7e22ce; --good: #15803d; }
body { margin: 0 auto; max-width: 1400px; padding: 16px 24px 40px; background: #fff; color: #1b1f24;
       font: 15px/1.45 system-ui, "DejaVu Sans", sans-serif; }
h1 { font-size: 20px; font-weight: 600; margin: 0 0 12px; overflow-wrap: anywhere; }
h2 { font-size: 17px; margin: 28px 0 6px; }
#decision { border-left: 6px solid #b45309; background: #fff8eb; padding: 10px 18px 6px; }
#decision.found { border-color: var(--good); background: #f0faf3; }
#decision.abnormal { border-color: #b91c1c; background: #fef2f2; }
#decision h2 { margin: 0 0 4px; font-size: 20px; }
#decision ul { margin: 0 0 6px; padding-left: 20px; }
.warning { background: #fff8eb; padding: 8px 14px; }
.facts { display: flex; flex-wrap: wrap; gap: 6px 36px; margin: 14px 0; }
.facts dt { color: #57606a; font-size: 13px; }
.facts dd { margin: 0; font-size: 17px; font-variant-numeric: tabular-nums; }
table { border-collapse: collapse; font-size: 14px; font-variant-numeric: tabular-nums; }
th, td { text-align: left; padding: 3px 22px 3px 0; border-bottom: 1px solid #e3e6ea; font-weight: 400; }
#events td:nth-child(-n+2), #events th:nth-child(-n+2) { text-align: right; }
th.f17 { color: var(--f17); font-weight: 600; }
th.f19 { color: var(--f19); font-weight: 600; }
figure { margin: 14px 0 0; }
figcaption { display: flex; flex-wrap: wrap; gap: 2px 18px; align-items: baseline; font-size: 13px; color: #424a53; }
figcaption b { font-size: 14px; color: #1b1f24; margin-right: 8px; }
.key { white-space: nowrap; }
.key svg { width: 26px; height: 16px; margin-right: 5px; vertical-align: -3px; }
.readout { position: sticky; top: 0; z-index: 1; margin: 0; padding: 4px 0; background: #ffffffee; font-size: 13px;
           color: #57606a; font-variant-numeric: tabular-nums; min-height: 19px; }
.readout b { color: #1b1f24; }
svg.chart { display: block; width: 100%; height: auto; }
svg.chart text { font-size: 13px; fill: #424a53; }
svg .middle { text-anchor: middle; }
svg .end { text-anchor: end; }
svg text.title { fill: #57606a; }
svg text.label.f17 { fill: var(--f17); }
svg text.label.f19 { fill: var(--f19); }
svg text.label.f175 { fill: var(--f175); }
svg text.label.f18 { fill: var(--f18); }
.f17 { stroke: var(--f17); } .f19 { stroke: var(--f19); } .f175 { stroke: var(--f175); } .f18 { stroke: var(--f18); }
text.f17, text.f19, text.f175, text.f18 { stroke: none; }
.grid { stroke: #e6e9ed; fill: none; }
.tick { stroke: #8c959f; }
.frame { fill: none; stroke: #aeb5bd; }
.ignored { fill: #6e7781; fill-opacity: .30; }
.phase { fill: #6e7781; fill-opacity: .10; }
.curve { fill: none; stroke-width: 1.5; stroke-linejoin: round; stroke-opacity: .8; }
.dots.f17 { fill: var(--f17); } .dots.f19 { fill: var(--f19); } .dots.f175 { fill: var(--f175); }
.dots.f18 { fill: var(--f18); }
.dots { stroke: none; }
path.ambient { stroke-width: 1.2; stroke-dasharray: 2 3; fill: none; }
path.threshold { stroke-width: 1.6; stroke-dasharray: 8 4; fill: none; }
path.threshold.ratio { stroke: #424a53; }
path.floor { stroke-width: 3; stroke-opacity: .55; fill: none; }
.pair path { stroke: var(--good); fill: none; stroke-width: 1.6; }
.pair path.span { stroke-width: 4; }
.pair.further path { stroke-width: 1; stroke-opacity: .6; }
svg text.pair { fill: var(--good); font-weight: 600; font-size: 14px; paint-order: stroke; stroke: #fff; stroke-width: 4; }
.marks path { fill: none; stroke-width: 1.8; }
.marks.start path { fill: currentColor; }
.marks.start.f17 { color: var(--f17); } .marks.start.f19 { color: var(--f19); }
.marks.sequence path { stroke: #92400e; fill: #f59e0b; }
.marks.abnormal path { stroke: #7f1d1d; fill: #dc2626; }
.marks.extend path { stroke: #57606a; }
.cursor { stroke: #1b1f24; stroke-dasharray: 3 3; pointer-events: none; }
.notes { max-width: 900px; font-size: 14px; color: #424a53; }
.notes dt { font-weight: 600; color: #1b1f24; }
.notes dd { margin: 0 0 6px; }
@media print { .readout { display: none; } body { padding: 0; } }
)";

const char kFineStyle[] = R"(
.curve.fitted { stroke: #1b1f24; stroke-dasharray: 7 4; }
.deviation { fill: var(--good); fill-opacity: .25; stroke: none; }
.upright { fill: none; stroke: #8c959f; }
.upright.onset, .upright.end { stroke: var(--good); }
.upright.end { stroke-dasharray: 4 3; }
.interval path { fill: none; stroke-width: 7; stroke-opacity: .45; }
.interval.fine { stroke: var(--good); fill: var(--good); }
.interval.service { stroke: #57606a; fill: #57606a; }
svg text.upright { stroke: #fff; stroke-width: 4; paint-order: stroke; font-variant-numeric: tabular-nums; }
)";

// The cursor computes levels back from the points of the drawn curves. On a thinned curve it shows the nearest point
// that was kept.
const char kPageScript[] = R"(
'use strict';
for (const section of document.querySelectorAll('.charts')) {
  const readout = section.querySelector('.readout');
  const charts = [...section.querySelectorAll('svg.chart')].map(svg => {
    const at = Object.fromEntries(Object.entries(svg.dataset).map(([key, value]) => [key, +value]));
    const curves = [...svg.querySelectorAll('.curve')].map(path => ({
      label: path.dataset.label,
      points: [...path.getAttribute('d').matchAll(/[ML]([\d.]+) ([\d.]+)/g)].map(point => [+point[1], +point[2]])
    }));
    const line = document.createElementNS(svg.namespaceURI, 'path');
    line.setAttribute('class', 'cursor');
    svg.append(line);
    return {svg, at, curves, line, isRatio: svg.id.endsWith('ratios')};
  });
  const nearest = (points, x) => {
    let low = 0, high = points.length - 1;
    while (low < high) {
      const middle = (low + high) >> 1;
      if (points[middle][0] < x) low = middle + 1; else high = middle;
    }
    return low > 0 && x - points[low - 1][0] < points[low][0] - x ? points[low - 1] : points[low];
  };
  const describe = ({at, curves, isRatio}, x) => curves.filter(curve => curve.points.length).map(curve => {
    const [, y] = nearest(curve.points, x);
    const decibels = at.high - (y - at.top) / (at.bottom - at.top) * (at.high - at.low);
    const sign = y >= at.bottom ? '&le; ' : '';
    return `${curve.label}${isRatio ? ' over neighbours' : ''} <b>${sign}${decibels.toFixed(1)}</b>` +
        (isRatio ? ' dB' : ' dBFS');
  });
  section.addEventListener('pointermove', event => {
    const svg = event.target.closest('svg.chart');
    if (!svg) return;
    const {at} = charts[0];
    const box = svg.getBoundingClientRect();
    const x = (event.clientX - box.left) / box.width * svg.viewBox.baseVal.width;
    const buffer = Math.round(at.from + (x - at.left) / (at.right - at.left) * (at.to - at.from));
    if (buffer < at.from || buffer > at.to) return;
    const snapped = at.left + (buffer - at.from) / (at.to - at.from) * (at.right - at.left);
    const texts = charts.flatMap(chart => describe(chart, snapped));
    for (const chart of charts) chart.line.setAttribute('d', `M${snapped} ${chart.at.top}V${chart.at.bottom}`);
    readout.innerHTML =
        [`buffer <b>${buffer}</b>`, `<b>${(buffer * bufferS).toFixed(3)}</b> s`, ...texts].join(' &middot; ');
  });
}
)";

const char kReadoutHint[] = "Point at a chart to read the levels of a buffer.";

#define ORVEX_KEY(style, text) \
  "<span class='key'><svg viewBox='0 -3 26 16'><path class='" style "' d='M0 5H26'/></svg>" text "</span>"
#define ORVEX_BAND_KEY(style, text) \
  "<span class='key'><svg viewBox='0 -3 26 16'><rect class='" style "' width='26' height='10'/></svg>" text "</span>"
#define ORVEX_MARK_KEY(style, shape, text)                                                                      \
  "<span class='key'><svg viewBox='0 -3 26 16'><g class='marks " style "'><path d='" shape "'/></g></svg>" text \
  "</"                                                                                                          \
  "span>"

const char kEventsLegend[] =
    ORVEX_BAND_KEY("ignored", "ignored") ORVEX_BAND_KEY("phase", "ambient phase")
        ORVEX_MARK_KEY("clean f17", "M13 0v10", "block with a clean tone")
            ORVEX_MARK_KEY("start f17", "M8 5a5 5 0 1 0 10 0a5 5 0 1 0-10 0", "taken as the first tone")
                ORVEX_MARK_KEY("noisy f19", "M9 1l8 8m0-8l-8 8", "noisy")
                    ORVEX_MARK_KEY("sequence", "M13 -1l6 6l-6 6l-6-6z", "sequence error")
                        ORVEX_MARK_KEY("abnormal", "M13 -1l6 6l-6 6l-6-6z", "abnormal input")
                            "<span class='key pair'><svg viewBox='0 -3 26 16'><path class='span' d='M0 5H26'/></svg>"
                            "pair: first to second tone</span>"
                            "<span class='key pair further'><svg viewBox='0 -3 26 16'><path class='span' d='M0 5H26'/></svg>"
                            "further pair: changes nothing in a run</span>";

const char kTonesLegend[] = ORVEX_KEY("curve f17", "17 kHz") ORVEX_KEY("curve f19", "19 kHz")
    ORVEX_KEY("ambient f17", "ambient mean") ORVEX_KEY("threshold f17", "threshold, 34.0 dB above it")
        ORVEX_KEY("floor f19", "what a second tone must reach, where that is more");

const char kRatiosLegend[] = ORVEX_KEY("curve f17", "17 kHz") ORVEX_KEY("curve f19", "19 kHz")
    ORVEX_KEY("threshold ratio", "threshold: below it a tone is noisy");

const char kNeighboursLegend[] =
    ORVEX_KEY("curve f175", "17.5 kHz") ORVEX_KEY("curve f18", "18 kHz") ORVEX_KEY("ambient f175", "ambient mean");

#define ORVEX_ONSET_KEYS                           \
  ORVEX_KEY("curve fitted", "fitted direct sound") \
  ORVEX_KEY("upright onset", "onset") ORVEX_BAND_KEY("deviation", "its standard deviation")

const char kOnset17Legend[] = ORVEX_KEY("curve f17", "measured") ORVEX_ONSET_KEYS;
const char kOnset19Legend[] = ORVEX_KEY("curve f19", "measured") ORVEX_ONSET_KEYS;

const char kIntervalLegend[] =
    "<span class='key'><svg viewBox='0 -3 26 16'><g class='interval fine'><path d='M0 5H26'/></g></svg>"
    "95 % interval of the fine reading</span>";

const char kFineNotes[] = R"(<p class="notes">The receiver decides while it listens and counts whole buffers. The fine
reading has the whole recording: it lays all bursts of a tone over one another and fits to their rise the sound that
comes straight from the loudspeaker. The measured curve leaves the fitted one where reflections have arrived: they add to
the direct sound, or take from it. The interval holds the true difference in 95 of 100 rooms.</p>
)";

const char kPageNotes[] = R"(<section class="notes"><h2>How to read this</h2>
<dl>
<dt>buffer</dt><dd>One block of the remote's audio, 768 samples or 16.50 ms, numbered from 1. Times are those of its
end. The first 4 are ignored, the next 30 give the ambient means, and from buffer 36 on tones are looked for.</dd>
<dt>dBFS</dt><dd>0 dBFS is a sine at full scale that fills the block. What lies
20 dB and more below the ambient mean, digital silence too, is drawn at the bottom.</dd>
<dt>a tone</dt><dd>is found in a block when it reaches 50 times its ambient mean (34.0 dB), is stronger than the other
tone, and is not noisy: at least 5 times (14.0 dB) the mean of its neighbours, 17.5 and 18 kHz. The eleventh noisy one
ends a run as abnormal input if it is 19 kHz.</dd>
<dt>a pair</dt><dd>is a first tone and the other one at most 19 buffers (313 ms) later, at least as strong as it was in
the block of the first tone. Anything else is a sequence error, and the late or weak tone becomes the first. A run goes
by its first pair; pairs that follow in the recording change nothing there.</dd>
<dt>long recordings</dt><dd>Where blocks outnumber the columns of a picture, each column shows its lowest and its
highest block.</dd>
</dl></section>
)";

}  // namespace orvex::tools
