// A reporter of `node --test` for scripts/test_reports.py: a line of JSON for each test that waits, starts or ends, and
// for what is printed meanwhile.
import { inspect } from "node:util";

const given = (directive) => directive !== undefined && directive !== false;

function entry(type, data) {
    switch (type) {
    case "test:stdout":
    case "test:stderr":
        return { event: "printed", text: data.message };
    case "test:enqueue":
    case "test:start":
        return { event: type.slice(5), name: data.name, nesting: data.nesting };
    case "test:pass":
    case "test:fail": {
        const error = data.details.error;
        return {
            event: type.slice(5),
            name: data.name,
            nesting: data.nesting,
            suite: data.details.type === "suite",
            skipped: given(data.skip) || given(data.todo),
            failure: error?.failureType,
            error: error && inspect(error.cause ?? error),
        };
    }
    default:
        return undefined;
    }
}

export default async function* report(events) {
    for await (const { type, data } of events) {
        const line = entry(type, data);
        if (line) {
            yield `${JSON.stringify(line)}\n`;
        }
    }
}
