// What agents read back from sessions on the disk, whoever made them and however damaged they are.
import assert from "node:assert/strict";
import { copyFileSync, mkdirSync, readdirSync, rmSync, symlinkSync, writeFileSync } from "node:fs";
import { join } from "node:path";
import { after, before, beforeEach, describe, it } from "node:test";
import { startDesktop } from "./lib/desktop.mjs";
import { INVALID_ARGUMENTS, call, connect } from "./lib/orvane.mjs";
import { sessionsFolder, sizeOf } from "./lib/recording.mjs";

const ID = "20260102-030405.678";
const WORDS = ["Deployment finished", "3 warnings, 0 errors"];
const TEXT = "Ünïcode — 日本 👋\r\n\t\"second\" line";
const NOTHING = "No annotations found. Use Cmd+Ctrl+P to place markers on screen, then submit.";
/// Longer than a name, than a path, and than any file system takes.
const LONG = "x".repeat(100000);

let desktop;
let client;
let sign;
before(async () => {
    desktop = await startDesktop("--size", "1280x800");
    sign = await desktop.openWindow({ className: "SignTerm", position: [60, 60], size: [420, 160],
                                      text: WORDS.map((line) => `\\r\\n  ${line}\\r\\n`).join("") });
    client = await connect(desktop.env);
});
after(async () => {
    await client?.close();
    await desktop?.stop();
});
beforeEach(() => {
    rmSync(sessionsFolder(desktop), { recursive: true, force: true });
    mkdirSync(join(sessionsFolder(desktop), ID), { recursive: true });
});

const inSession = (name) => join(sessionsFolder(desktop), ID, name);
const makeLatest = () => symlinkSync(join(sessionsFolder(desktop), ID), join(sessionsFolder(desktop), "latest"));

/// Has a tool take a picture that is kept, and gives the path of its file.
async function takePicture(name, args) {
    const captures = join(desktop.home, ".orvane/captures");
    readdirSync(captures).forEach((file) => rmSync(join(captures, file)));
    const { error, text } = await call(client, name, args);
    assert.ok(!error, text);
    const files = readdirSync(captures);
    assert.equal(files.length, 1);
    return join(captures, files[0]);
}

/// Puts a picture of this size into the session, by which it is known again.
async function putPicture(name, width, height = 20) {
    copyFileSync(await takePicture("capture_region", { x: 0, y: 0, width, height }), inSession(name));
}

describe("get_annotations", () => {
    const assertSays = async (expected, args) => {
        const { error, items } = await call(client, "get_annotations", args);
        assert.ok(!error);
        assert.deepEqual(items, [expected]);
    };

    it("says so when there is no session at all", async () => {
        await assertSays(NOTHING);
        rmSync(sessionsFolder(desktop), { recursive: true });
        await assertSays(NOTHING, { ocr: true });
    });

    it("says so when the newest session is gone", async () => {
        makeLatest();
        rmSync(inSession(""), { recursive: true });
        await assertSays(NOTHING);
    });

    for (const [what, prepare] of [
        ["is missing", () => {}],
        ["is a folder", (path) => mkdirSync(path)],
        ["is no text", (path) => writeFileSync(path, Buffer.from([0x23, 0xff, 0xfe, 0x00]))],
        ["is a link to itself", (path) => symlinkSync(path, path)],
        ["is a device without an end", (path) => symlinkSync("/dev/zero", path)],
    ]) {
        it(`says so when SESSION.md ${what}`, async () => {
            makeLatest();
            prepare(inSession("SESSION.md"));
            await assertSays("No SESSION.md found in latest session.");
        });
    }

    it("gives the text alone where there are no regions", async () => {
        makeLatest();
        const text = `# Orvane Session\n\n${TEXT}, no newline at the end`;
        writeFileSync(inSession("SESSION.md"), text);
        await putPicture("annotated.png", 50);
        await putPicture("region-1.jpg", 50);
        await assertSays(`Session path: ${join(sessionsFolder(desktop), ID)}\n\n${text}`);
    });

    it("gives the regions in the order of their names, and their text when asked", async () => {
        makeLatest();
        writeFileSync(inSession("SESSION.md"), "# Orvane Session\n");
        const { width, height } = desktop.frame(sign.id);
        copyFileSync(await takePicture("capture_window_region",
                                       { app_name: "SignTerm", x: 0, y: 30, width, height: height - 30 }),
                     inSession("region-1.png"));
        await putPicture("region-10.png", 51);
        await putPicture("region-2.png", 52);
        // Wider than what agents are shown.
        await putPicture("region-wide.png", 1200, 300);
        writeFileSync(inSession("region-3.png"), "no picture");
        writeFileSync(inSession("region-4.png"), "");
        mkdirSync(inSession("region-5.png"));
        symlinkSync("/dev/zero", inSession("region-6.png"));

        const expected = (text) => [
            `Session path: ${join(sessionsFolder(desktop), ID)}\n\n# Orvane Session\n`,
            `--- region-1.png ---${text}`, [width, height - 30], "--- region-10.png ---", [51, 20],
            "--- region-2.png ---", [52, 20], "--- region-wide.png ---", [1024, 256]];
        const read = async (args) => {
            const { error, items } = await call(client, "get_annotations", args);
            assert.ok(!error);
            return items.map((item) => typeof item === "string" ? item : sizeOf(item));
        };
        for (const args of [{}, { ocr: false }, { ocr: "true" }, { ocr: 1 }]) {
            assert.deepEqual(await read(args), expected(""));
        }
        const items = await read({ ocr: true });
        const wanted = expected(`\nRecognized text:\n${WORDS.join("\n")}`);
        // The last picture holds the same window and more.
        const [wide] = items.splice(7, 1);
        wanted.splice(7, 1);
        assert.match(wide, new RegExp(`^--- region-wide\\.png ---\nRecognized text:\n(.|\n)*${WORDS[0]}`));
        assert.deepEqual(items, wanted);
    });
});

describe("read_frame", () => {
    it("reads a picture of any session, or of the newest one", async () => {
        await putPicture("frame-000-start.png", 60);
        const read = async (args) => {
            const { error, text, images } = await call(client, "read_frame", { frame: "frame-000-start.png", ...args });
            return error ? text : [text, ...images.map(sizeOf)];
        };
        const expected = [`Frame: frame-000-start.png from session ${ID}`, [60, 20]];
        assert.deepEqual(await read({ session_id: ID }), expected);
        assert.equal(await read({}), INVALID_ARGUMENTS);
        makeLatest();
        assert.deepEqual(await read({}), expected);
        assert.deepEqual(await read({ session_id: 5 }), expected);
        assert.deepEqual(await read({ session_id: "latest" }), ["Frame: frame-000-start.png from session latest", [60, 20]]);
    });

    it("shrinks what is larger than agents are shown", async () => {
        await putPicture("large.png", 1280, 800);
        const { images } = await call(client, "read_frame", { session_id: ID, frame: "large.png" });
        assert.deepEqual(images.map(sizeOf), [[1024, 640]]);
    });

    it("reads beside the session where the name says so", async () => {
        await putPicture("a.png", 61);
        const outside = join(desktop.home, "outside.png");
        copyFileSync(inSession("a.png"), outside);
        for (const frame of ["../../../outside.png", `../${ID}/a.png`, "./a.png", "/a.png"]) {
            const { error, text, images } = await call(client, "read_frame", { session_id: ID, frame });
            assert.ok(!error, frame);
            assert.equal(text, `Frame: ${frame} from session ${ID}`);
            assert.deepEqual(images.map(sizeOf), [[61, 20]]);
        }
        // A path is no path of its own.
        const { text } = await call(client, "read_frame", { session_id: ID, frame: outside });
        assert.equal(text, INVALID_ARGUMENTS);
    });

    it("has words for what is no picture", async () => {
        await putPicture("whole.png", 300, 200);
        desktop.run("sh", "-c", 'head -c 300 "$0" >"$1"', inSession("whole.png"), inSession("cut.png"));
        writeFileSync(inSession("text.png"), "no picture at all");
        writeFileSync(inSession("empty.png"), "");
        writeFileSync(inSession("SESSION.md"), "# Orvane Session\n");
        mkdirSync(inSession("folder.png"));
        desktop.run("mkfifo", inSession("pipe.png"));
        symlinkSync("/dev/zero", inSession("device.png"));
        for (const frame of ["text.png", "empty.png", "SESSION.md", "folder.png", "pipe.png", "device.png", "missing.png",
                             "cut.png", "", "..", "/", "/etc/passwd", "whole.png\0", "\0", LONG, `${"../".repeat(5000)}etc`,
                             undefined, null, 5, ["whole.png"], {}]) {
            const { error, text } = await call(client, "read_frame", { session_id: ID, frame });
            assert.deepEqual([error, text], [true, INVALID_ARGUMENTS], JSON.stringify(frame)?.slice(0, 80));
        }
        for (const id of ["", "/", "..", "no such", `${ID}\0`, LONG, "../".repeat(5000)]) {
            const { error, text } = await call(client, "read_frame", { session_id: id, frame: "whole.png" });
            assert.deepEqual([error, text], [true, INVALID_ARGUMENTS], id.slice(0, 80));
        }
        await client.ping();
    });
});

describe("get_annotation_feedback", () => {
    const stroke = (id, changes = {}) => ({
        id, kind: "arrow", colorHex: "#FF3B30", strokeWidth: 4, text: "", label: "", rotation: 0, role: "agent",
        removed: false, startAbs: [10, 20], endAbs: [110, 220], startNorm: [0.25, 0.5], endNorm: [0.75, 1.5],
        displayIndex: 0, zOrder: 0, timestampMs: 1700000000000, ...changes });
    const session = (changes = {}) => ({
        meta: { schemaVersion: 1, id: ID, createdAtMs: 1700000000000, provenance: "agent" },
        displays: [{ displayId: 71, index: 0, bounds: [[0, 0], [1280, 800]], scale: 1 },
                   { displayId: 4000000000, index: 2, bounds: [[1280, 0], [1280, 800]], scale: 2 }],
        strokes: [stroke("A"), stroke("B", { label: "here", displayIndex: 2 })], ...changes });
    const write = (value) =>
        writeFileSync(inSession("session.json"), typeof value === "string" ? value : JSON.stringify(value));

    async function feedback(args = { sessionId: ID }) {
        const { error, text, images } = await call(client, "get_annotation_feedback", args);
        assert.ok(!error, text);
        return { answer: JSON.parse(text), text, widths: images.map(({ width }) => width) };
    }

    async function assertNotFound(id = ID) {
        const { answer, widths } = await feedback({ sessionId: id });
        assert.deepEqual(answer, { path: `~/.orvane/sessions/${id}`, sessionId: id, status: "not_found" });
        assert.deepEqual(widths, []);
    }

    const kept = [{ id: "A", kind: "arrow", label: "", removed: false },
                  { id: "B", kind: "arrow", label: "here", removed: false }];

    it("is pending until the human has handed in", async () => {
        write(session());
        for (const args of [{ sessionId: ID }, { session_id: ID }, { sessionId: 5, session_id: ID },
                            { sessionId: ID, session_id: "another" }]) {
            const { answer, text, widths } = await feedback(args);
            assert.deepEqual(answer, { agentStrokes: kept, comments: [], path: `~/.orvane/sessions/${ID}`, sessionId: ID,
                                       status: "pending" });
            assert.deepEqual(Object.keys(answer), Object.keys(answer).sort());
            assert.match(text, /^\{\n {2,4}"agentStrokes": \[\n/);
            assert.deepEqual(widths, []);
        }
    });

    it("gives what the human said and what became of the agent's marks", async () => {
        write(session({
            meta: { ...session().meta, title: "a title", reviewedAtMs: 0 },
            window: { appName: "SignTerm", title: "", bounds: [[0, 0], [10, 10]] },
            strokes: [
                stroke("A", { removed: true }), stroke("B", { label: "here" }),
                stroke("C", { role: "review", kind: "text", text: TEXT, startNorm: [-0.5, 1.25] }),
                stroke("D", { role: "review", displayIndex: undefined, label: "no display" }),
                stroke("E", { role: "review", removed: true }), stroke("F", { role: "human" }), stroke("G", { role: "Review" }),
            ] }));
        const { answer, widths } = await feedback();
        assert.deepEqual(answer, {
            agentStrokes: [{ ...kept[0], removed: true }, kept[1]],
            comments: [
                { displayIndex: 0, id: "C", kind: "text", label: "", text: TEXT, x: -0.5, y: 1.25 },
                { id: "D", kind: "arrow", label: "no display", text: "", x: 0.25, y: 0.5 },
            ],
            path: `~/.orvane/sessions/${ID}`, sessionId: ID, status: "submitted" });
        assert.deepEqual(widths, []);
    });

    it("shows the displays that the human changed, the review before the drawing", async () => {
        write(session({ strokes: [stroke("A", { removed: true, displayIndex: 2 }), stroke("B", { role: "review" }),
                                  stroke("C", { role: "review", displayIndex: 1 })] }));
        await putPicture("baked.png", 30);
        assert.deepEqual((await feedback()).widths, [30]);
        await putPicture("baked_review.png", 31);
        assert.deepEqual((await feedback()).widths, [31]);
        await putPicture("baked-4000000000.png", 32);
        assert.deepEqual((await feedback()).widths, [32]);
        await putPicture("baked-71.png", 33);
        assert.deepEqual((await feedback()).widths, [33, 32]);
        await putPicture("baked_review-4000000000.png", 34);
        assert.deepEqual((await feedback()).widths, [33, 34]);
        // One that cannot be read is left out, and no other takes its place.
        writeFileSync(inSession("baked_review-71.png"), "no picture");
        assert.deepEqual((await feedback()).widths, [34]);
    });

    it("shows the drawing where the human changed nothing, four pictures at most", async () => {
        write(session());
        for (const [name, width] of [["baked-9.png", 41], ["baked-10.png", 42], ["baked-x.png", 43], ["baked-2.png", 44],
                                     ["baked-y.png", 45], ["baked_review-9.png", 46], ["baked-1.jpg", 47]]) {
            await putPicture(name, width);
        }
        assert.deepEqual((await feedback()).widths, [42, 44, 41, 43]);
        writeFileSync(inSession("baked-2.png"), "");
        assert.deepEqual((await feedback()).widths, [42, 41, 43]);
    });

    describe("a session.json that is none", () => {
        const text = JSON.stringify(session());
        const change = (path, value) => {
            const changed = session();
            const keys = path.split(".");
            const last = keys.pop();
            keys.reduce((object, key) => object[key], changed)[last] = value;
            return changed;
        };
        const wrong = {
            "empty": "", "no JSON": "no JSON", "null": "null", "an array": "[]", "no members": "{}",
            "half of it": text.slice(0, text.length / 2), "all but the last character": text.slice(0, -1),
            "something behind it": `${text}x`, "no marks": { ...session(), strokes: undefined },
            "100,000 arrays deep": `${"[".repeat(100000)}${"]".repeat(100000)}`,
            "100,000 objects deep": `${'{"a":'.repeat(100000)}1${"}".repeat(100000)}`,
            "a member 100,000 arrays deep": text.replace('"agent"', `${"[".repeat(100000)}${"]".repeat(100000)}`),
            "a version in words": change("meta.schemaVersion", "1"), "a meta that is an array": change("meta", []),
            "a date with a fraction": change("meta.reviewedAtMs", 0.5), "displays in an object": change("displays", {}),
            "a display below 0": change("displays.0.displayId", -1),
            "a display beyond": change("displays.0.displayId", 2 ** 32),
            "bounds of three": change("displays.0.bounds", [[0, 0], [1, 1], [2, 2]]),
            "a mark that is null": change("strokes.1", null), "a kind that is a number": change("strokes.1.kind", 5),
            "a point of one number": change("strokes.0.startNorm", [1]),
            "a point in words": change("strokes.0.startNorm", ["1", "2"]),
            "removed as a number": change("strokes.0.removed", 1),
        };
        for (const [what, value] of Object.entries(wrong)) {
            it(what, async () => {
                write(value);
                await assertNotFound();
            });
        }

        it("is missing, a folder, a device, a link to itself", async () => {
            await assertNotFound();
            for (const make of [mkdirSync, (path) => symlinkSync("/dev/zero", path), (path) => symlinkSync(path, path)]) {
                make(inSession("session.json"));
                await assertNotFound();
                rmSync(inSession("session.json"), { recursive: true });
            }
        });

        it("far larger than a drawing can be, or large and cut off", async () => {
            const filled = (megabytes) => text.replace('"agent"', `"${"y".repeat(megabytes << 20)}"`);
            write(filled(10));
            assert.equal((await feedback()).answer.status, "pending");
            write(filled(10).slice(0, -1));
            await assertNotFound();
            write(filled(50));
            await assertNotFound();
        });

        it("10 or 50 MB of blanks, or of nothing that can be read", async () => {
            for (const [filler, megabytes] of [[" ", 10], ["\0", 10], ["[", 10], ["[", 50]]) {
                write(filler.repeat(megabytes << 20));
                await assertNotFound();
            }
            await client.ping();
        });
    });

    it("looks nowhere else for a session of a strange name", async () => {
        for (const id of ["", "/", "..", "no/such", "no such", "\0", `${ID}\0`, "a\nb", "ünïcode 👋", "-rf", "latest", LONG,
                          "../".repeat(5000)]) {
            await assertNotFound(id);
        }
        // The name is part of a path, so this one is the session itself.
        write(session());
        assert.equal((await feedback({ sessionId: `../sessions/${ID}` })).answer.status, "pending");
    });

    it("needs a session", async () => {
        for (const args of [{}, { sessionId: null }, { sessionId: 7, session_id: ["a"] }, { session: ID }]) {
            const { error, text } = await call(client, "get_annotation_feedback", args);
            assert.deepEqual([error, text], [true, "Error: sessionId is required (from annotate_understanding's result)."]);
        }
    });
});
