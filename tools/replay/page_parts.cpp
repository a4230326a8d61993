// Style, cursor, legends and notes of the page.
#include "replay/page_parts.h"

namespace orvex::tools {

// The Content-Security-Policy makes the browser refuse to load anything from outside the page, and to run any script.
const char kPageBegin[] = R"(<!DOCTYPE html>
<html lang="en">
<head>
<meta charset="utf-8"/>
<meta http-equiv="Content-Security-Policy" content="default-src 'none'; style-src 'unsafe-inline'; img-src data:"/>
<meta name="viewport" content="width=device-width, initial-scale=1"/>
)";

// All colours are those of kPalette.
const char kPageStyle[] = R"(
@media (prefers-color-scheme: dark) { svg image, svg .scale { filter: invert(1) hue-rotate(180deg); } }
body { margin: 0 auto; max-width: 1160px; padding: 16px 24px 40px; background: var(--paper); color: var(--ink);
       font: 16px/1.5 system-ui, "DejaVu Sans", sans-serif; }
h1 { font-size: 22px; font-weight: 600; margin: 0 0 14px; overflow-wrap: anywhere; }
h2, h3 { font-size: 19px; margin: 30px 0 6px; overflow-wrap: anywhere; }
article { margin-top: 44px; border-top: 3px solid var(--line-strong); }
article > h2 { font-size: 21px; margin: 14px 0; }
a { color: var(--ink-17); }
:focus-visible { outline: 3px solid var(--ink-17); outline-offset: 2px; }
.decision { border-left: 6px solid var(--ink-warn); background: var(--paper-warn); padding: 12px 18px 6px;
            border-radius: 0 6px 6px 0; }
.decision.found { border-color: var(--ink-good); background: var(--paper-good); }
.decision.abnormal { border-color: var(--ink-bad); background: var(--paper-bad); }
.decision h2, .decision h3 { margin: 0 0 4px; font-size: 22px; }
.decision ul { margin: 0 0 6px; padding-left: 20px; }
.warning { background: var(--paper-warn); padding: 8px 14px; }
.facts { display: flex; flex-wrap: wrap; gap: 6px 36px; margin: 16px 0; }
.facts dt { color: var(--ink-soft); font-size: 14px; }
.facts dd { margin: 0; font-size: 18px; font-variant-numeric: tabular-nums; }
.readings { display: flex; flex-wrap: wrap; gap: 12px; margin: 16px 0 0; }
.reading { flex: 1 1 260px; background: var(--paper-raised); border-radius: 6px; padding: 10px 18px; }
.reading p { margin: 0; color: var(--ink-soft); }
.reading p.value { font-size: 26px; font-weight: 600; color: var(--ink); font-variant-numeric: tabular-nums; }
.scroll { overflow-x: auto; }
table { border-collapse: collapse; font-size: 14px; font-variant-numeric: tabular-nums; }
th, td { text-align: left; padding: 4px 20px 4px 0; border-bottom: 1px solid var(--line); font-weight: 400;
         vertical-align: baseline; }
thead th { color: var(--ink-soft); }
th[scope=row] { color: var(--ink); }
.numbers td, .numbers th, .events td:nth-child(-n+2), .events th:nth-child(-n+2) { text-align: right; }
.numbers td { white-space: nowrap; }
.numbers td:last-child, .numbers th:last-child { text-align: left; }
thead th.f17 { color: var(--ink-17); font-weight: 600; }
thead th.f19 { color: var(--ink-19); font-weight: 600; }
.overview td { min-width: 110px; } .overview th { min-width: 110px; overflow-wrap: anywhere; }
td.good { color: var(--ink-good); font-weight: 600; } td.warn { color: var(--ink-warn); font-weight: 600; }
td.bad { color: var(--ink-bad); font-weight: 600; }
details { margin: 10px 0; }
summary { cursor: pointer; color: var(--ink-17); padding: 6px 0; }
figure { margin: 18px 0 0; }
figcaption { display: flex; flex-wrap: wrap; gap: 2px 18px; align-items: baseline; font-size: 14px;
             color: var(--ink-soft); }
figcaption b { font-size: 16px; color: var(--ink); margin-right: 8px; }
.key svg { width: 26px; height: 16px; margin-right: 5px; vertical-align: -3px; }
.hint { margin: 0; font-size: 14px; color: var(--ink-soft); }
svg.chart { display: block; width: 100%; min-width: 860px; height: auto; }
svg.chart text { font-size: 14px; fill: var(--ink-soft); }
svg .middle { text-anchor: middle; }
svg .end { text-anchor: end; }
svg text.label.f17, svg text.note.f17 { fill: var(--ink-17); }
svg text.label.f19, svg text.note.f19 { fill: var(--ink-19); }
svg text.label.f175 { fill: var(--ink-175); }
svg text.label.f18 { fill: var(--ink-18); }
.f17 { stroke: var(--ink-17); } .f19 { stroke: var(--ink-19); } .f175 { stroke: var(--ink-175); }
.f18 { stroke: var(--ink-18); }
svg text.label { stroke: none; }
svg text.note, svg text.pair, svg text.upright, svg text.inside { stroke: var(--paper); stroke-width: 5;
  stroke-linejoin: round; paint-order: stroke; }
.grid { stroke: var(--line); fill: none; }
.tick { stroke: var(--line-strong); }
.frame { fill: none; stroke: var(--line-strong); }
.ignored { fill: var(--line-strong); fill-opacity: .28; }
.phase { fill: var(--line-strong); fill-opacity: .12; }
.curve { fill: none; stroke-width: 1.8; stroke-linejoin: round; }
.curve.f19, .curve.f18 { stroke-dasharray: 6 3; }
.points { stroke-width: 1.5; fill: var(--paper); }
path.ambient { stroke-width: 1.3; stroke-dasharray: 1.5 4; fill: none; }
path.threshold { stroke-width: 1.8; stroke-dasharray: 12 5; fill: none; }
path.threshold.ratio { stroke: var(--ink-soft); }
path.floor { stroke-width: 3.5; stroke-dasharray: 3 2; fill: none; }
.pair path { stroke: var(--ink-good); fill: none; stroke-width: 1.8; }
.pair path.span { stroke-width: 4; }
.pair.further path { stroke-width: 1; stroke-dasharray: 4 3; }
svg text.pair { fill: var(--ink-good); font-weight: 600; font-size: 16px; }
.marks path { fill: none; stroke-width: 2; }
.marks.start path { fill: currentColor; }
.marks.start.f17 { color: var(--ink-17); } .marks.start.f19 { color: var(--ink-19); }
.marks.sequence path { stroke: var(--ink-warn); fill: var(--paper-warn); }
.marks.abnormal path { stroke: var(--ink-bad); fill: var(--ink-bad); }
.marks.extend path { stroke: var(--ink-soft); }
.box { fill: transparent; stroke-width: 2.5; }
.box.row { stroke-width: 1; stroke-dasharray: 2 5; }
.box.rejected { stroke-dasharray: 4 3; }
.scalemark { stroke: var(--ink); stroke-width: 1.6; }
.readout rect { fill: transparent; }
.readout path { stroke: var(--ink); stroke-dasharray: 3 3; }
.readout path, .readout text { visibility: hidden; pointer-events: none; }
.readout:hover path, .readout:hover text { visibility: visible; }
.notes { max-width: 900px; font-size: 15px; color: var(--ink-soft); }
.notes dt { font-weight: 600; color: var(--ink); }
.notes dd { margin: 0 0 6px; }
@media (max-width: 600px) { body { padding: 12px 12px 32px; } }
@media print { body { padding: 0; } .hint { display: none; } }
.curve.fitted { stroke: var(--ink); stroke-dasharray: 7 4; }
.deviation { fill: var(--ink-good); fill-opacity: .25; stroke: none; }
.upright { fill: none; stroke: var(--line-strong); }
.upright.onset, .upright.end { stroke: var(--ink-good); }
.upright.end { stroke-dasharray: 4 3; }
.interval path { fill: none; stroke-width: 7; stroke-opacity: .5; }
.interval.fine { stroke: var(--ink-good); fill: var(--ink-good); }
.interval.service { stroke: var(--ink-17); fill: var(--ink-17); }
svg text.upright { font-variant-numeric: tabular-nums; }
)";

const char kReadoutHint[] =
    "Point at or touch a buffer in the picture of the two tones to read its levels; the table below has them all.";

#define ORVEX_KEY(style, text)                                                                                      \
  "<span class='key'><svg viewBox='0 -3 26 16' aria-hidden='true'><path class='" style "' d='M0 5H26'/></svg>" text \
  "</span>"
#define ORVEX_BAND_KEY(style, text)                                                    \
  "<span class='key'><svg viewBox='0 -3 26 16' aria-hidden='true'><rect class='" style \
  "' width='26' height='10'/></svg>" text "</span>"
#define ORVEX_MARK_KEY(style, shape, text)                                                                    \
  "<span class='key'><svg viewBox='0 -3 26 16' aria-hidden='true'><g class='marks " style "'><path d='" shape \
  "'/></g></svg>" text "</span>"

const char kEventsLegend[] =
    ORVEX_BAND_KEY("ignored", "ignored, or behind the end") ORVEX_BAND_KEY("phase", "ambient phase")
        ORVEX_MARK_KEY("clean f17", "M13 0v10", "block with a clean tone")
            ORVEX_MARK_KEY("start f17", "M8 5a5 5 0 1 0 10 0a5 5 0 1 0-10 0", "taken as the first tone")
                ORVEX_MARK_KEY("noisy f19", "M9 1l8 8m0-8l-8 8", "noisy")
                    ORVEX_MARK_KEY("sequence", "M13 -1l6 6l-6 6l-6-6z", "sequence error")
                        ORVEX_MARK_KEY("abnormal", "M13 -1l6 6l-6 6l-6-6z", "abnormal input")
                            "<span class='key pair'><svg viewBox='0 -3 26 16' aria-hidden='true'>"
                            "<path class='span' d='M0 5H26'/></svg>pair: first to second tone</span>"
                            "<span class='key pair further'><svg viewBox='0 -3 26 16' aria-hidden='true'>"
                            "<path class='span' d='M0 5H26'/></svg>further pair: changes nothing in a run</span>";

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

const char kReadingsLegend[] =
    "<span class='key'><svg viewBox='0 -3 26 16' aria-hidden='true'><g class='interval service'><path d='M0 5H26'/></g>"
    "</svg>the service, ± one buffer</span>"
    "<span class='key'><svg viewBox='0 -3 26 16' aria-hidden='true'><g class='interval fine'><path d='M0 "
    "5H26'/></g></svg>"
    "95 % interval of the fine reading</span>";

const char kSpectrogramLegend[] =
    "<span class='key'><svg viewBox='0 -3 26 16' aria-hidden='true'><rect class='box clean f17' x='5' y='-1' "
    "width='16' "
    "height='11' rx='3'/></svg>reached its threshold: a tone</span>"
    "<span class='key'><svg viewBox='0 -3 26 16' aria-hidden='true'><rect class='box rejected f19' x='5' y='-1' "
    "width='16' height='11' rx='3'/></svg>reached it, but was rejected</span>"
    "<span class='key pair'><svg viewBox='0 -3 26 16' aria-hidden='true'><path class='span' d='M4 9L22 1'/></svg>"
    "pair</span>";

const char kFineNotes[] = R"(<p class="notes">The receiver decides while it listens and counts whole buffers. The fine
reading has the whole recording: it lays all bursts of a tone over one another and fits to their rise the sound that
comes straight from the loudspeaker. The measured curve leaves the fitted one where reflections have arrived: they add to
the direct sound, or take from it. The interval holds the true difference in 95 of 100 rooms.</p>
)";

const char kPageNotes[] = R"(<section class="notes"><h2>How to read this</h2>
<dl>
<dt>buffer</dt><dd>One block of the remote's audio, 768 samples or 16.50 ms, numbered from 1. Times are those of its
end. The first 4 are ignored, the next 30 give the ambient means, and from buffer 36 on tones are looked for.</dd>
<dt>sound over time and frequency</dt><dd>The further a place is from the page's own colour, the louder. The scale
beside the picture has the two thresholds. They are compared with whole blocks, whose levels the picture of the two
tones has; the spectra here are weighted so that bursts stay narrow.</dd>
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
