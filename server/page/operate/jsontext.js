// Reads a JSON text without losing anything: numbers stay as they were written, and of equal keys
// all are kept.

/**
 * @typedef {{kind: "plain", text: string}} Plain a number, a word, or text of a string
 * @typedef {{kind: "string", text: string}} Text
 * @typedef {{kind: "object", entries: [string, Node][]}} Members
 * @typedef {{kind: "array", items: Node[]}} Items
 * @typedef {Plain | Text | Members | Items} Node
 */

const token = /[\s]*(?:([{}[\]:,])|("(?:[^"\\]|\\.)*")|([^\s{}[\]:,"]+))/gy;
const deepest = 200;

class Reader {
  #text;
  #at = 0;
  #next = "";

  /** @param {string} text */
  constructor(text) {
    this.#text = text;
    this.#step();
  }

  #step() {
    const taken = this.#next;
    token.lastIndex = this.#at;
    const found = token.exec(this.#text);
    if (!found && this.#text.slice(this.#at).trim())
      throw new SyntaxError("not JSON");
    this.#at = found ? token.lastIndex : this.#text.length;
    this.#next = found ? found[0].trim() : "";
    return taken;
  }

  /** @param {string} wanted */
  #take(wanted) {
    if (this.#step() !== wanted)
      throw new SyntaxError(`${wanted} is missing`);
  }

  /** @param {string} end @param {() => void} one */
  #list(end, one) {
    this.#step();
    while (this.#next !== end) {
      one();
      if (this.#next !== end)
        this.#take(",");
    }
    this.#step();
  }

  /** @param {number} depth @returns {Node} */
  value(depth) {
    if (depth > deepest)
      throw new SyntaxError("too deep");
    if (this.#next === "{") {
      /** @type {[string, Node][]} */
      const entries = [];
      this.#list("}", () => {
        const name = JSON.parse(this.#step());
        this.#take(":");
        entries.push([String(name), this.value(depth + 1)]);
      });
      return { kind: "object", entries };
    }
    if (this.#next === "[") {
      /** @type {Node[]} */
      const items = [];
      this.#list("]", () => items.push(this.value(depth + 1)));
      return { kind: "array", items };
    }
    const plain = this.#step();
    if (plain.startsWith('"'))
      return { kind: "string", text: JSON.parse(plain) };
    if (!plain || /^[{}[\]:,]$/.test(plain))
      throw new SyntaxError("a value is missing");
    return { kind: "plain", text: plain };
  }

  end() {
    if (this.#next)
      throw new SyntaxError("there is more");
  }
}

/** @param {string} text @returns {Node} throws SyntaxError when it is no JSON */
export function parse(text) {
  const reader = new Reader(text);
  const node = reader.value(0);
  reader.end();
  return node;
}

/** The member of that name. @param {Node} node @param {string} name @returns {Node | undefined} */
export const member = (node, name) =>
  node.kind === "object" ? node.entries.find(([key]) => key === name)?.[1] : undefined;

/**
 * In lines, two blanks deeper at each level.
 * @param {Node} node
 * @param {string} [indent]
 * @returns {string}
 */
export function pretty(node, indent = "") {
  const deeper = `${indent}  `;
  /** @param {string} open @param {string[]} lines @param {string} close */
  const block = (open, lines, close) => lines.length === 0 ? open + close
    : `${open}\n${lines.map((line) => deeper + line).join(",\n")}\n${indent}${close}`;
  switch (node.kind) {
    case "object":
      return block("{", node.entries.map(
        ([key, value]) => `${JSON.stringify(key)}: ${pretty(value, deeper)}`), "}");
    case "array":
      return block("[", node.items.map((item) => pretty(item, deeper)), "]");
    case "string":
      return JSON.stringify(node.text);
    default:
      return node.text;
  }
}
