// Alarms in each ten minutes as bars, with the line above which nobody follows any more.
import { element } from "../shell/dom.js";
import { number } from "../shell/format.js";
import { label } from "../shell/words.js";

/** @typedef {{at: string, alarms: number}} Interval a stretch of ten minutes from `at` */

const flood = 10;          // alarms in ten minutes
const leastBar = 3;        // px, with its gap
const labelWidth = 96;     // px
const margin = { left: 44, right: 8, top: 8, bottom: 24 };
const oneDay = 24 * 3600 * 1000;

const namespace = "http://www.w3.org/2000/svg";

/**
 * @param {string} name
 * @param {Record<string, string | number>} attributes
 * @param {...(Node | string)} children
 */
function shape(name, attributes, ...children) {
  const created = document.createElementNS(namespace, name);
  for (const [key, value] of Object.entries(attributes))
    created.setAttribute(key, String(value));
  created.append(...children);
  return created;
}

/**
 * As many as there is room for; each stands for the largest of those that it covers.
 * @param {Interval[]} series
 * @param {number} room
 */
function thinned(series, room) {
  const step = Math.max(1, Math.ceil(series.length / room));
  const kept = [];
  for (let first = 0; first < series.length; first += step)
    kept.push(series.slice(first, first + step)
      .reduce((most, each) => each.alarms > most.alarms ? each : most));
  return kept;
}

/** A round number from `value` up, whose half is round as well. @param {number} value */
function roundUp(value) {
  const power = 10 ** Math.floor(Math.log10(value));
  return [1, 2, 4, 6, 10].map((step) => step * power).find((step) => step >= value) ?? value;
}

const minute = new Intl.DateTimeFormat(undefined,
  { hour: "2-digit", minute: "2-digit", hourCycle: "h23" });
const dayAndMinute = new Intl.DateTimeFormat(undefined,
  { month: "2-digit", day: "2-digit", hour: "2-digit", minute: "2-digit", hourCycle: "h23" });

/** Day and time to the minute. @param {string} at */
export const moment = (at) => dayAndMinute.format(new Date(at));

/**
 * @param {SVGElement} picture
 * @param {Interval[]} bars
 * @param {(index: number) => number} x of the bar's left side
 * @param {number} y
 */
function addMoments(picture, bars, x, y) {
  const first = bars[0];
  const isLong = Date.parse(bars[bars.length - 1].at) - Date.parse(first.at) >= oneDay;
  const format = isLong ? dayAndMinute : minute;
  const every = Math.ceil(labelWidth / (x(1) - x(0)));
  for (let index = 0; index < bars.length; index += every) {
    if (index > 0 && x(index) + labelWidth > x(bars.length) + margin.right)
      break;
    picture.append(shape("text", { class: "moment", x: x(index), y },
      format.format(new Date(bars[index].at))));
  }
}

/**
 * @param {Interval[]} series
 * @param {number} width px
 * @param {number} height px
 */
function drawing(series, width, height) {
  const picture = shape("svg", { viewBox: `0 0 ${width} ${height}`, width, height });
  const right = width - margin.right;
  const bottom = height - margin.bottom;
  const bars = thinned(series, Math.max(1, Math.floor((right - margin.left) / leastBar)));
  const pitch = (right - margin.left) / Math.max(1, bars.length);
  const gap = Math.min(8, 0.15 * pitch);
  const top = roundUp(Math.max(flood * 1.2, ...bars.map(({ alarms }) => alarms)));
  const x = (/** @type {number} */ index) => margin.left + index * pitch;
  const y = (/** @type {number} */ alarms) => bottom - (bottom - margin.top) * alarms / top;
  const across = (/** @type {string} */ name, /** @type {number} */ alarms) =>
    shape("line", { class: name, x1: margin.left, x2: right, y1: y(alarms), y2: y(alarms) });

  for (const level of [0, top / 2, top])
    picture.append(across("level", level),
      shape("text", { class: "scale", x: margin.left - 6, y: y(level) + 4 }, number(level)));
  bars.forEach(({ at, alarms }, index) => picture.append(shape("rect", {
    class: alarms >= flood ? "column over" : "column",
    x: x(index) + gap / 2, width: pitch - gap, y: y(alarms), height: bottom - y(alarms),
  }, shape("title", {}, label("rateAt", moment(at), number(alarms))))));
  if (bars.length > 0)
    addMoments(picture, bars, x, height - 6);
  picture.append(across("flood", flood),
    shape("text", { class: "floodName", x: right, y: y(flood) - 4 }, label("floodLine", flood)));
  return picture;
}

/** @param {Interval[]} series @param {Interval} peak */
function summary(series, peak) {
  const total = series.reduce((sum, { alarms }) => sum + alarms, 0);
  return total === 0 ? label("rateNone")
    : label("rateSummary", number(total), number(peak.alarms), moment(peak.at));
}

/** @param {Interval[]} series */
function numbers(series) {
  const details = element("details", { className: "numbers" },
    element("summary", { textContent: label("asNumbers") }));
  const fill = () => {
    const rows = series.map(({ at, alarms }) => element("tr", {},
      element("th", { scope: "row", textContent: moment(at) }),
      element("td", { textContent: number(alarms) })));
    details.append(element("div", { className: "scroller", tabIndex: 0, role: "region",
      "aria-label": label("rateTitle") }, element("table", {},
      element("thead", {}, element("tr", {},
        element("th", { scope: "col", textContent: label("rateFrom") }),
        element("th", { scope: "col", textContent: label("alarmCount") }))),
      element("tbody", {}, ...rows))));
  };
  details.addEventListener("toggle", fill, { once: true });
  return details;
}

/**
 * The picture with what it says in words and as numbers. It follows the width of its place.
 * @param {Interval[]} series
 * @param {Interval} peak the most within any ten minutes
 * @returns {{parts: HTMLElement[], close: () => void}}
 */
export function ratePicture(series, peak) {
  const words = summary(series, peak);
  const place = element("div", { className: "rate", role: "img", "aria-label": words });
  const observer = new ResizeObserver(() => {
    const { clientWidth, clientHeight } = place;
    if (clientWidth > 0)
      place.replaceChildren(drawing(series, clientWidth, clientHeight));
  });
  observer.observe(place);
  return {
    parts: [element("p", { className: "said", textContent: words }), place, numbers(series)],
    close: () => observer.disconnect(),
  };
}
