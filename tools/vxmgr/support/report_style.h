// How a report looks: on screens of any width, light and dark, and on paper.
#pragma once

namespace vxmgr {

inline constexpr char kReportStyle[] = R"css(
:root {
  color-scheme: light dark;
  --ground: #f3f5f9; --paper: #ffffff; --ink: #16202e; --soft: #56637a; --rule: #dce2ec;
  --accent: #1f5fd0; --first: #1f5fd0; --second: #b4560c; --wash: #eaf0fb;
  --good: #13723f; --good-wash: #e2f4ea; --warning: #8a5200; --warning-wash: #fdf0d5;
  --critical: #b3202c; --critical-wash: #fde7e7; --unknown: #56637a; --unknown-wash: #e9edf3;
  --zone-good: #58b885; --zone-warning: #e9b44c; --zone-critical: #dd6b70;
  --shadow: 0 1px 2px rgb(22 32 46 / .06), 0 6px 20px rgb(22 32 46 / .06);
}
@media (prefers-color-scheme: dark) {
  :root {
    --ground: #0e141d; --paper: #171f2b; --ink: #e6ebf3; --soft: #9dabc0; --rule: #2a3545;
    --accent: #7fb0ff; --first: #7fb0ff; --second: #f0a35e; --wash: #1e2a3d;
    --good: #6fd6a0; --good-wash: #143226; --warning: #f3c268; --warning-wash: #3a2c10;
    --critical: #ff9a9c; --critical-wash: #43191d; --unknown: #9dabc0; --unknown-wash: #243042;
    --zone-good: #2f8a5b; --zone-warning: #a8791f; --zone-critical: #a8434a;
    --shadow: 0 1px 2px rgb(0 0 0 / .4);
  }
}
* { box-sizing: border-box; }
html { scroll-behavior: smooth; scroll-padding-top: 4rem; }
body {
  margin: 0; background: var(--ground); color: var(--ink);
  font: 15px/1.5 system-ui, "Segoe UI", Roboto, "Helvetica Neue", Arial, sans-serif;
}
.banner, nav, main, footer { padding-inline: max(1rem, calc((100vw - 1240px) / 2)); }
.banner { padding-block: 2.2rem 1.4rem; background: linear-gradient(160deg, var(--wash), var(--ground) 75%); }
.over {
  margin: 0; color: var(--accent); font-weight: 650; font-size: .8rem;
  letter-spacing: .09em; text-transform: uppercase;
}
h1 { margin: .1rem 0 .3rem; font-size: clamp(1.7rem, 5vw, 2.6rem); line-height: 1.15; letter-spacing: -.02em; overflow-wrap: anywhere; }
h2 { margin: 2.6rem 0 1rem; font-size: 1.45rem; letter-spacing: -.01em; }
h3 { margin: 0; font-size: 1.15rem; }
h4 {
  margin: 1.3rem 0 .5rem; padding-top: .9rem; border-top: 1px solid var(--rule);
  font-size: .78rem; letter-spacing: .08em; text-transform: uppercase; color: var(--soft);
}
p { margin: .3rem 0; }
.muted { color: var(--soft); }
.skip { position: absolute; left: -99rem; }
.skip:focus { left: 1rem; top: 1rem; background: var(--paper); padding: .5rem 1rem; z-index: 3; }
a { color: var(--accent); }
:focus-visible { outline: 3px solid var(--accent); outline-offset: 2px; border-radius: 4px; }

.tiles { display: flex; flex-wrap: wrap; gap: .8rem; margin: 1.4rem 0 0; padding: 0; list-style: none; }
.tile {
  flex: 1 1 8.5rem; max-width: 15rem; padding: .8rem 1.1rem; background: var(--paper); border-radius: 12px;
  border: 1px solid var(--rule); border-left: 5px solid var(--accent); box-shadow: var(--shadow);
}
.tile strong { display: block; font-size: 1.5rem; line-height: 1.2; letter-spacing: -.02em; font-variant-numeric: tabular-nums; }
.tile span { color: var(--soft); font-size: .85rem; }
.tile.good { border-left-color: var(--zone-good); }
.tile.warning { border-left-color: var(--zone-warning); }
.tile.critical { border-left-color: var(--zone-critical); }
.tile.good strong { color: var(--good); }
.tile.warning strong { color: var(--warning); }
.tile.critical strong { color: var(--critical); }

nav {
  position: sticky; top: 0; z-index: 2; display: flex; gap: .4rem; padding-block: .6rem; overflow-x: auto;
  background: var(--ground); border-bottom: 1px solid var(--rule);
}
nav a { padding: .25rem .8rem; border-radius: 99px; text-decoration: none; white-space: nowrap; font-size: .9rem; }
nav a:hover { background: var(--wash); }

.badge {
  display: inline-flex; align-items: center; gap: .35em; padding: .05em .6em; border-radius: 99px;
  vertical-align: middle;
  font-size: .85em; font-weight: 600; white-space: nowrap; unicode-bidi: isolate;
  color: var(--unknown); background: var(--unknown-wash);
}
.badge .sign { font-size: .85em; }
.badge.good { color: var(--good); background: var(--good-wash); }
.badge.warning { color: var(--warning); background: var(--warning-wash); }
.badge.critical { color: var(--critical); background: var(--critical-wash); }
.verdict { font-size: 1.05rem; }

.scrolls {
  overflow-x: auto; margin: .8rem 0; background: var(--paper); border: 1px solid var(--rule);
  border-radius: 12px; box-shadow: var(--shadow);
}
table { width: 100%; border-collapse: collapse; font-size: .9rem; }
caption { padding: .8rem 1rem .4rem; text-align: left; font-weight: 650; }
th, td { padding: .45rem 1rem; text-align: left; vertical-align: top; border-top: 1px solid var(--rule); unicode-bidi: isolate; }
thead th { border-top: 0; color: var(--soft); font-size: .78rem; font-weight: 600; white-space: nowrap; }
tbody th { font-weight: 600; white-space: nowrap; }
.number { text-align: right; font-variant-numeric: tabular-nums; white-space: nowrap; }
tbody tr:hover { background: var(--wash); }

.cards { display: grid; grid-template-columns: repeat(auto-fill, minmax(min(23rem, 100%), 1fr)); gap: 1.1rem; align-items: start; }
.card { min-width: 0; padding: 1.2rem 1.3rem; background: var(--paper); border: 1px solid var(--rule); border-radius: 14px; box-shadow: var(--shadow); }
.card header { display: flex; flex-wrap: wrap; justify-content: space-between; align-items: center; gap: .5rem; }
.card .scrolls { box-shadow: none; border-radius: 8px; max-height: 22rem; overflow-y: auto; }
.card th, .card td { padding: .25rem .7rem; }
.facts { display: grid; grid-template-columns: repeat(auto-fill, minmax(9.5rem, 1fr)); gap: .5rem 1rem; margin: .6rem 0; }
.facts div { min-width: 0; }
.facts .long { grid-column: 1 / -1; }
.facts .long dd { font-family: ui-monospace, "Cascadia Mono", Consolas, "DejaVu Sans Mono", monospace; font-size: .92em; }
dt { color: var(--soft); font-size: .78rem; }
dd { margin: 0; overflow-wrap: anywhere; unicode-bidi: isolate; font-variant-numeric: tabular-nums; }
.errors { display: flex; flex-wrap: wrap; gap: .35rem; }
details { margin: .5rem 0; }
summary { cursor: pointer; color: var(--accent); unicode-bidi: isolate; }

.readings { margin: .6rem 0; padding: 0; list-style: none; }
.readings li { display: grid; grid-template-columns: 1fr auto auto; align-items: center; gap: .1rem .6rem; margin-bottom: .65rem; }
.readings .value { font-variant-numeric: tabular-nums; font-weight: 600; }
.limits { grid-column: 1 / -1; width: 100%; height: 14px; }
.zone-good { fill: var(--zone-good); } .zone-warning { fill: var(--zone-warning); } .zone-critical { fill: var(--zone-critical); }
.mark { fill: var(--ink); stroke: var(--paper); stroke-width: 1; }

.tree, .tree ul { margin: 0; padding-left: 1.1rem; list-style: none; border-left: 2px solid var(--rule); }
.tree { padding: 1rem 1.2rem; background: var(--paper); border: 1px solid var(--rule); border-radius: 12px; box-shadow: var(--shadow); }
.tree li { padding: .1rem 0; overflow-wrap: anywhere; unicode-bidi: isolate; }
.tree details { margin: 0; }
.tree li:not(:has(> details)) { padding-left: 1rem; }
.tree summary { color: inherit; }
.tree .kind { color: var(--soft); font-size: .78rem; }

figure { margin: 0 0 1.2rem; }
figcaption { font-weight: 650; }
.legend { display: flex; flex-wrap: wrap; gap: .2rem 1.1rem; font-size: .82rem; color: var(--soft); }
.key { width: 24px; height: 8px; vertical-align: middle; }
.chart { display: block; width: 100%; height: auto; }
.chart text { font-size: 11px; fill: var(--soft); font-variant-numeric: tabular-nums; }
.grid { stroke: var(--rule); } .axis { stroke: var(--soft); }
.line { fill: none; stroke-width: 2; stroke-linejoin: round; }
.line.first { stroke: var(--first); } .dot.first, .event.first { fill: var(--first); }
.line.second { stroke: var(--second); stroke-dasharray: 6 3; } .dot.second { fill: var(--second); }
.line.bad { stroke: var(--critical); } .dot.bad, .event.bad { fill: var(--critical); }
.event.good { fill: var(--good); }
.timeline { display: block; width: 100%; height: 28px; }
.events { padding: 0; list-style: none; }
.events li { padding: .35rem 0; border-bottom: 1px solid var(--rule); unicode-bidi: isolate; }
.events time { color: var(--soft); font-variant-numeric: tabular-nums; }
footer { padding-block: 2rem; color: var(--soft); font-size: .85rem; }

@media print {
  :root {
    color-scheme: light;
    --ground: #fff; --paper: #fff; --ink: #000; --soft: #444; --rule: #bbb; --wash: #fff; --shadow: none;
    --accent: #123f91; --first: #123f91; --second: #8a3d00;
    --good: #0c5a30; --good-wash: #fff; --warning: #6e4100; --warning-wash: #fff;
    --critical: #94131e; --critical-wash: #fff; --unknown: #444; --unknown-wash: #fff;
    --zone-good: #58b885; --zone-warning: #e9b44c; --zone-critical: #dd6b70;
  }
  * { print-color-adjust: exact; -webkit-print-color-adjust: exact; }
  body { font-size: 10pt; }
  nav, .skip { display: none; }
  .scrolls, .card .scrolls { overflow: visible; max-height: none; }
  .card, .tile, figure, tr, li { break-inside: avoid; }
  .card { break-inside: auto; }
  h2, h3, h4 { break-after: avoid; }
  .badge { border: 1px solid currentColor; }
  details > * { content-visibility: visible; }
  details::details-content { content-visibility: visible; display: block; height: auto; }
}
)css";

}  // namespace vxmgr
