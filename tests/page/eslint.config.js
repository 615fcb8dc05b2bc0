import js from "@eslint/js";
import globals from "globals";

const strict = {
  "array-callback-return": "error",
  eqeqeq: ["error", "always", { null: "ignore" }],
  "max-len": ["error", { code: 100, ignoreStrings: true, ignoreTemplateLiterals: true }],
  "max-lines": ["error", 250],
  "no-implicit-globals": "error",
  "no-shadow": "error",
  "no-unused-vars": ["error", { caughtErrors: "all", ignoreRestSiblings: true }],
  "no-var": "error",
  "object-shorthand": "error",
  "prefer-const": "error",
  "prefer-template": "off",
  "require-atomic-updates": "off",
};

/** Text of events and of users is text: nothing is ever read as markup or as code. */
const noMarkup = {
  "no-eval": "error",
  "no-implied-eval": "error",
  "no-new-func": "error",
  "no-restricted-properties": ["error",
    ...["innerHTML", "outerHTML", "insertAdjacentHTML"].map((property) => ({ property })),
    { object: "document", property: "write" }],
};

export default [
  js.configs.recommended,
  { rules: strict, linterOptions: { reportUnusedDisableDirectives: "error" } },
  {
    files: ["server/page/**/*.js"],
    languageOptions: { globals: globals.browser },
    rules: noMarkup,
  },
  {
    files: ["tests/page/**/*.js"],
    // What is handed to page.evaluate runs in the browser.
    languageOptions: { globals: { ...globals.node, ...globals.browser } },
  },
];
