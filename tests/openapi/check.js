// The server's description of its requests against OpenAPI's own schema; and what that does not say:
// every reference leads somewhere, and every operation names a role.
import { readFileSync } from "node:fs";
import { Validator } from "@seriousme/openapi-schema-validator";

const file = new URL("../../server/api/openapi.json", import.meta.url);
const description = JSON.parse(readFileSync(file, "utf8"));
const faults = [];

const result = await new Validator().validate(structuredClone(description));
if (!result.valid)
  faults.push(JSON.stringify(result.errors, null, 2));

const follow = (reference) =>
  reference.slice(2).split("/").reduce((value, name) => value?.[name], description);
const visit = (value) => {
  if (typeof value !== "object" || value === null)
    return;
  if (typeof value.$ref === "string" && follow(value.$ref) === undefined)
    faults.push(`${value.$ref} leads nowhere`);
  Object.values(value).forEach(visit);
};
visit(description);

for (const [path, operations] of Object.entries(description.paths)) {
  for (const [method, { "x-role": role }] of Object.entries(operations)) {
    if (!["none", "view", "confirm", "engineer"].includes(role))
      faults.push(`${method} ${path} is for nobody: ${role}`);
  }
}

console.log(faults.length === 0
  ? `OpenAPI ${description.openapi}: ${Object.keys(description.paths).length} paths, no fault`
  : faults.join("\n"));
process.exitCode = faults.length === 0 ? 0 : 1;
