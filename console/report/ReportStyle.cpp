#include "console/report/ReportStyle.h"

namespace kelvane::console {

const char* const kReportStyle = R"(
:root {
  color-scheme: light dark;
  --paper: #ffffff; --ink: #1d2327; --faint: #5c666e; --rule: #d5dade; --tint: #f3f5f7;
  --good: #17713a; --bad: #b3261e; --open: #8a5a00; --link: #0b5cad;
  --cpld: #8a4fbf; --firmware: #0b74c4; --total: #1d2327; --quiet: #e3a008;
}
@media (prefers-color-scheme: dark) {
  :root {
    --paper: #15191c; --ink: #e4e8eb; --faint: #9aa5ad; --rule: #353d43; --tint: #1e2428;
    --good: #6fd197; --bad: #ff8a80; --open: #f0bf5c; --link: #7cb8f5;
    --cpld: #c79bf2; --firmware: #6cb8f5; --total: #e4e8eb; --quiet: #c98f0a;
  }
}
* { box-sizing: border-box; }
html { -webkit-text-size-adjust: 100%; text-size-adjust: 100%; }
body {
  margin: 0 auto; max-width: 60rem; padding: 1rem; background: var(--paper); color: var(--ink);
  font: 1rem/1.5 system-ui, -apple-system, "Segoe UI", "DejaVu Sans", sans-serif;
  overflow-wrap: anywhere;
}
h1 { font-size: 1.6rem; line-height: 1.2; margin: 0.5rem 0 0.25rem; }
h2 { font-size: 1.25rem; margin: 2.25rem 0 0.5rem; padding-bottom: 0.25rem;
  border-bottom: 1px solid var(--rule); }
h3 { font-size: 1.05rem; margin: 1.5rem 0 0.25rem; }
p, ul, ol, dl { margin: 0.5rem 0; }
a { color: var(--link); }
:focus-visible { outline: 2px solid var(--link); outline-offset: 2px; }
.faint, figcaption { color: var(--faint); font-size: 0.9rem; }
.notice { background: var(--tint); padding: 0.5rem 0.75rem; border-radius: 0.25rem; }
.above { margin-bottom: 0; font-weight: 600; }
nav ul { display: flex; flex-wrap: wrap; gap: 0.25rem 1rem; list-style: none; padding: 0; }
.banner { padding: 0.75rem 1rem; border-left: 0.4rem solid; background: var(--tint);
  border-radius: 0.25rem; }
.banner strong { text-transform: uppercase; letter-spacing: 0.03em; margin-right: 0.25rem; }
.banner.good { border-color: var(--good); } .banner.good strong { color: var(--good); }
.banner.bad { border-color: var(--bad); } .banner.bad strong { color: var(--bad); }
.banner.open { border-color: var(--open); } .banner.open strong { color: var(--open); }
dl { display: grid; grid-template-columns: minmax(7rem, max-content) 1fr; gap: 0.25rem 1rem; }
dt { color: var(--faint); } dd { margin: 0; }
pre, code, .log { font-family: ui-monospace, "SFMono-Regular", "DejaVu Sans Mono", monospace;
  font-size: 0.82rem; }
pre { margin: 0.5rem 0; padding: 0.75rem; background: var(--tint); border-radius: 0.25rem;
  white-space: pre-wrap; }
code { color: var(--faint); }
.wide { overflow-x: auto; margin: 0.5rem 0; }
table { border-collapse: collapse; font-size: 0.9rem; font-variant-numeric: tabular-nums; }
th, td { text-align: left; vertical-align: top; padding: 0.3rem 0.9rem 0.3rem 0;
  border-bottom: 1px solid var(--rule); overflow-wrap: normal; }
tbody th { font-weight: 500; }
.short { white-space: nowrap; } .path { overflow-wrap: anywhere; min-width: 7.5rem; }
thead th { color: var(--faint); font-weight: 600; }
.findings { list-style: none; padding: 0; }
.finding { border-left: 0.25rem solid var(--open); padding-left: 0.75rem; margin: 1rem 0; }
.finding.error { border-color: var(--bad); }
.finding strong { color: var(--open); } .finding.error strong { color: var(--bad); }
.log { list-style: none; padding: 0; line-height: 1.45; }
.log li { border-bottom: 1px solid var(--tint); padding: 0.1rem 0; }
.log > li.error strong, .log > li.error b { color: var(--bad); }
.log .gap { color: var(--faint); padding: 0.5rem 0; }
.log time { color: var(--faint); } .log b { color: var(--link); font-weight: 500; }
summary { cursor: pointer; }
figure { margin: 0.5rem 0; }
.plot { display: block; font-size: 12px; }
.plot .phase.even { fill: var(--tint); } .plot .phase.odd { fill: var(--rule); opacity: 0.5; }
.plot .silence { fill: var(--quiet); opacity: 0.28; }
.plot .grid { stroke: var(--rule); vector-effect: non-scaling-stroke; }
.plot .line { fill: none; stroke-width: 2px; vector-effect: non-scaling-stroke;
  stroke-linejoin: round; }
.plot .line.cpld { stroke: var(--cpld); stroke-dasharray: 6 3; }
.plot .line.firmware { stroke: var(--firmware); stroke-dasharray: 2 2; }
.plot .line.total { stroke: var(--total); stroke-width: 2.5px; }
.plot text { fill: var(--ink); } .plot .axis, .plot .name { fill: var(--faint); }
.plot .quiet { font-weight: 600; }
.mark { font-weight: 700; }
.plot .mark { font-size: 18px; }
.mark.fault { color: var(--bad); } .plot .mark.fault { fill: var(--bad); }
.mark.retry { color: var(--open); } .plot .mark.retry { fill: var(--open); }
.mark.done { color: var(--good); } .plot .mark.done { fill: var(--good); }
figcaption { display: flex; flex-wrap: wrap; gap: 0.25rem 1.25rem; }
.key::before { content: ""; display: inline-block; width: 1.4rem; height: 0; margin-right: 0.4rem;
  border-top: 3px solid; vertical-align: middle; }
.key.cpld::before { border-color: var(--cpld); border-top-style: dashed; }
.key.firmware::before { border-color: var(--firmware); border-top-style: dotted; }
.key.total::before { border-color: var(--total); }
.key.silence::before { height: 0.8rem; border: 0; background: var(--quiet); opacity: 0.4; }
@media (max-width: 30rem) {
  body { padding: 0.75rem; }
  dl { grid-template-columns: 1fr; gap: 0; } dd { margin-bottom: 0.5rem; }
  table { font-size: 0.72rem; } th, td { padding-right: 0.35rem; }
}
@media print {
  :root {
    color-scheme: light;
    --paper: #ffffff; --ink: #000000; --faint: #444444; --rule: #bbbbbb; --tint: #f6f6f6;
    --good: #17713a; --bad: #b3261e; --open: #8a5a00; --link: #000000;
    --cpld: #8a4fbf; --firmware: #0b74c4; --total: #000000; --quiet: #e3a008;
  }
  body { max-width: none; padding: 0; font-size: 10pt; }
  nav { display: none; }
  .wide { overflow: visible; }
  table { width: 100%; font-size: 8pt; } td { overflow-wrap: anywhere; }
  h2, h3 { break-after: avoid; }
  figure, tr, .finding, .banner { break-inside: avoid; }
}
)";

}  // namespace kelvane::console
