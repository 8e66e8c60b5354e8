// Pictures with more text than there is time for: the reply comes before the agent's pipe gives up, and says what is missing.
import assert from "node:assert/strict";
import { copyFileSync, mkdirSync, readdirSync, symlinkSync, writeFileSync } from "node:fs";
import { join } from "node:path";
import { after, before, describe, it } from "node:test";
import { withApplication } from "./lib/application.mjs";
import { startDesktop } from "./lib/desktop.mjs";
import { withProcess } from "./lib/orvane.mjs";
import { sessionsFolder } from "./lib/recording.mjs";

const SIZE = { width: 2560, height: 1440 };
const ROWS = 85;
const COLUMNS = 330;
const WORDS = "the quick brown fox jumps over the lazy dog while seven wizards box with 0123456789 quaint gnomes ";
const FIRST = "This is where the page begins";
const LAST = "This is where the page ends";
/// What a tool call has for reading, and what the pipe has for the reply to a tool call.
const BUDGET_SECONDS = 20;
const PIPE_SECONDS = 30;

let desktop;
before(async () => {
    desktop = await startDesktop("--size", `${SIZE.width}x${SIZE.height}`);
    desktop.settings({ HasOnboarded: true });
    const window = await desktop.openWindow({ className: "DenseTerm", size: [SIZE.width - 30, SIZE.height - 50],
                                              position: [0, 0] });
    window.show(`${FIRST}\\r\\n`);
    for (let row = 0; row < ROWS; row++) {
        window.show(WORDS.slice(row % 20).padEnd(COLUMNS + 20, WORDS).slice(0, COLUMNS).trim() + "\\r\\n");
    }
    window.show(LAST);
    await desktop.settled(window.id);
});
after(() => desktop?.stop());

/// Makes a session with two regions, both of which show the whole screen.
async function makeSession(pipe) {
    const { error, text } = await pipe.callTool("capture_region", { x: 0, y: 0, ...SIZE });
    assert.ok(!error, text);
    const captures = join(desktop.home, ".orvane/captures");
    const [picture] = readdirSync(captures);
    const session = join(sessionsFolder(desktop), "20260102-030405.678");
    mkdirSync(session, { recursive: true });
    writeFileSync(join(session, "SESSION.md"), "# Orvane Session\n");
    for (const region of ["region-1.png", "region-2.png"]) {
        copyFileSync(join(captures, picture), join(session, region));
    }
    symlinkSync(session, join(sessionsFolder(desktop), "latest"));
}

/// The lines that were read in a region. The first and the last row tell whether it was read from its beginning to its end.
function linesOf(item, region) {
    const [heading, recognized, ...lines] = item.split("\n");
    assert.equal(heading, `--- ${region}.png ---`);
    assert.equal(recognized, "Recognized text:");
    return lines;
}

function assertReadWhole(lines) {
    assert.equal(lines.at(-1), LAST);
    assert.ok(lines.includes(FIRST));
    assert.ok(lines.length >= ROWS + 2, `${lines.length} lines`);
}

describe("text that takes long to read", () => {
    it("leaves the reply its time, and what was not read is said", { timeout: 90000 }, () =>
        withApplication(desktop, () => withProcess(desktop.applicationEnv, async (pipe) => {
            await makeSession(pipe);
            const begin = Date.now();
            const { error, items } = await pipe.callTool("get_annotations", { ocr: true }, PIPE_SECONDS);
            const seconds = (Date.now() - begin) / 1000;
            assert.ok(!error, items[0]);
            assert.match(pipe.stderr, /orvane: proxying MCP to /);

            const [first, second] = [linesOf(items[1], "region-1"), linesOf(items[3], "region-2")];
            const missing = second.at(-1).match(/^\(Text not read in time(?:: (\d+) of (\d+) lines)?\.\)$/);
            if (!missing) {
                assertReadWhole(first);
                assertReadWhole(second);
                return;
            }
            assert.ok(seconds >= BUDGET_SECONDS, `it gave up after ${seconds} s`);
            for (const lines of [first, second]) {
                const end = lines.at(-1).match(/^\(Text not read in time(?:: (\d+) of (\d+) lines)?\.\)$/);
                if (!end) {
                    assertReadWhole(lines);
                    continue;
                }
                assert.ok(!lines.includes(LAST), lines.join("\n"));
                if (end[1] === undefined) {
                    assert.equal(lines.length, 1);
                    continue;
                }
                const [unread, found] = [Number(end[1]), Number(end[2])];
                assert.ok(unread > 0 && unread <= found && found >= ROWS + 2, end[0]);
                assert.ok(lines.length - 1 <= found - unread, `${lines.length - 1} lines, ${end[0]}`);
            }
            // What comes first is read first.
            assert.ok(first.includes(FIRST), first.join("\n"));
        })));
});
