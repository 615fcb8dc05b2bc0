// The list of alarms as somebody sees it.
import { eventually, sleep } from "./server.js";

export const rowOf = (page, id) => page.locator(`main tbody tr[data-key="${id}"]`);

/** Confirms like a person, who sees first what is pressed: under the pointer rows stand still. */
export async function confirmRow(page, id) {
  await rowOf(page, id).hover();
  await sleep(500);
  await rowOf(page, id).locator("button.confirm").click();
}

/** The rows from top to bottom: {id, title, life, state, confirmable}. */
export const rows = (page) => page.locator("main tbody tr").evaluateAll((all) => all.map((row) => ({
  id: row.dataset.key,
  title: row.querySelector(".title").textContent,
  state: row.querySelector(".state").textContent,
  life: row.querySelector(".life").textContent,
  confirmable: !row.querySelector("button.confirm").hidden,
})));

/** Waits until the rows are so, and gives them. */
export async function rowsWhen(page, condition, what, patience) {
  let shown;
  try {
    return await eventually(async () => {
      shown = await rows(page);
      return condition(shown) && shown;
    }, what, patience);
  } catch (error) {
    throw new Error(`${error.message}; shown: ${JSON.stringify(shown)}`);
  }
}

/** What the page asks the server to confirm: {id, timeRaised}, one after another. */
export function watchConfirmations(page) {
  const asked = [];
  page.on("request", (request) => {
    if (request.method() === "POST" && /confirm/.test(request.url()))
      asked.push(...JSON.parse(request.postData()).events);
  });
  return asked;
}
