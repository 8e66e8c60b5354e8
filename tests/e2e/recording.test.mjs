// Recordings: what an agent hears of a window that changes, what is on the disk afterwards, and everything that can
// go wrong in between.
import assert from "node:assert/strict";
import { existsSync, mkdirSync, readFileSync, readdirSync, readlinkSync, rmSync, writeFileSync } from "node:fs";
import { dirname, join } from "node:path";
import { after, before, beforeEach, describe, it } from "node:test";
import { startDesktop, until } from "./lib/desktop.mjs";
import { INVALID_ARGUMENTS, RawProcess, call, withProcess } from "./lib/orvane.mjs";
import { blend, channels, nearly } from "./lib/png.mjs";
import { GRID, Recording, changeFile, fill, fillAll, frameSize, keepChanging, pause, sessionIds, sessionsFolder, sizeOf,
         withWindow, withWindowAndClient } from "./lib/recording.mjs";

const NOT_RECORDING = "Not recording. Call start_recording first.";
const RED = "#ff3b30";

let desktop;
before(async () => {
    desktop = await startDesktop("--size", "1280x800");
    desktop.settings({ SaveRawVideo: false });
});
after(() => desktop?.stop());

const latest = () => join(sessionsFolder(desktop), "latest");

/// User and system time of a process.
function cpuMilliseconds(pid) {
    const fields = readFileSync(`/proc/${pid}/stat`, "latin1").replace(/^.*\) /s, "").split(" ");
    return (Number(fields[11]) + Number(fields[12])) * 10;
}

describe("a recording without a movie", () => {
    it("tells event by event what changes", () => withWindowAndClient(desktop, "StoryTerm", async (window, client) => {
        const [width, height] = frameSize(desktop, window);
        const recording = await Recording.start(desktop, client, "StoryTerm");
        assert.deepEqual(await recording.poll(), [
            `recording_start | Started monitoring StoryTerm — ${window.title} (${width}x${height}) | frame-000-start.png`]);
        assert.deepEqual(await recording.poll(), []);
        assert.ok(!existsSync(latest()), "the recording is not over");

        const files = [];
        for (const [column, row, area] of [[0, 0, "top-left"], [7, 5, "bottom-right"], [3, 2, "middle-center"],
                                           [0, 5, "bottom-left"], [6, 0, "top-right"]]) {
            fill(desktop, window, column, row, 196);
            const events = await recording.events();
            files.push(changeFile(events[0]));
            assert.deepEqual(events, [`visual_change | New activity in ${area} area (1 cells changed). | ${files.at(-1)}`]);
        }
        await assertShowsChange(client, recording, files.at(-1), 6, 0);

        fillAll(window, 22);
        const [major] = await recording.events();
        files.push(changeFile(major));
        const [, average] = major.match(/^major_change \| Major visual update \(100% of screen, avg (\d+)% diff\)\. /);
        // The window's title has not changed.
        assert.ok(Number(average) > 80 && Number(average) < 100, major);
        assert.equal(major, `major_change | Major visual update (100% of screen, avg ${average}% diff). ` +
            `Likely: full content refresh or navigation. | ${files.at(-1)}`);
        assert.deepEqual(await recording.poll(), []);
        assert.deepEqual(files, [...files].sort());

        const { items, markdown, rows } = await recording.stop();
        const [, frames] = markdown.match(/^- \*\*Frames captured:\*\* (\d+)$/m);
        const endName = `frame-${String(Number(frames) + 1).padStart(3, "0")}-end.png`;
        const [, duration] = markdown.match(/^- \*\*Duration:\*\* (\d+\.\d)s$/m);
        const end = rows.pop();
        assert.match(end.splice(2, 1)[0],
                     new RegExp(`^Recording stopped\\. Duration: \\d+\\.\\ds, ${frames} frames analyzed\\.$`));
        assert.deepEqual(end.slice(1), ["recording_end", endName]);
        assert.equal(rows.length, recording.lines.length);
        const [, timestamp] = markdown.match(/^- \*\*Timestamp:\*\* (\d{4}-\d\d-\d\dT\d\d:\d\d:\d\dZ)$/m);
        assert.ok(Math.abs(Date.now() - Date.parse(timestamp)) < 60000, timestamp);
        const table = markdown.split("\n").filter((line) => line.startsWith("| T+"));
        assert.equal(markdown, `# Orvane Session

- **Session ID:** ${recording.id}
- **Timestamp:** ${timestamp}
- **Type:** recording
- **Source:** mcp
- **App:** StoryTerm
- **Duration:** ${duration}s
- **Frames captured:** ${frames}
- **Start frame:** frame-000-start.png
- **End frame:** ${endName}

## Timeline

| Time | Event | Details | Screenshot |
|------|-------|---------|------------|
${table.join("\n")}

## Summary

- **Major changes:** 1 (saved as diff summary frames)
- **Minor changes:** 5 visual + 0 coalesced minor updates
- **Detection grid:** 8x6 cells

*Future: semantic region detection (ISSUE 007) will replace grid with VLM-identified UI elements.*
`);

        assert.deepEqual(items.slice(1).map((item) => typeof item === "string" ? item : sizeOf(item)),
                         ["--- frame-000-start.png ---", [width, height], `--- ${endName} ---`, [width, height]]);
        const inside = [width - 20, height - 20];
        assert.equal(items[2].at(...inside), window.colour);
        assert.notEqual(items[4].at(...inside), window.colour);

        assert.equal(readlinkSync(latest()), recording.folder);
        const thumbnail = await until("there is a thumbnail", () =>
            existsSync(recording.file("thumbnail.png")) && recording.picture("thumbnail.png"));
        assert.deepEqual(sizeOf(thumbnail), [400, Math.round(400 * height / width)]);
        assert.deepEqual(readdirSync(recording.folder).sort(),
                         ["SESSION.md", "frame-000-start.png", endName, "thumbnail.png", ...files].sort());
        // Without a session the newest is meant.
        const { text, images } = await call(client, "read_frame", { frame: files[0] });
        assert.equal(text, `Frame: ${files[0]} from session ${recording.id}`);
        assert.deepEqual(sizeOf(images[0]), [width, height]);

        assert.equal((await call(client, "poll_recording")).text, NOT_RECORDING);
        assert.equal((await call(client, "stop_recording")).text, INVALID_ARGUMENTS);
    }));

    /// The frame of a change is the window with a red box and a number on one cell, and nothing else.
    async function assertShowsChange(client, recording, name, column, row) {
        const { text, images: [frame] } = await call(client, "read_frame", { session_id: recording.id, frame: name });
        assert.equal(text, `Frame: ${name} from session ${recording.id}`);
        const { images: [plain] } = await call(client, "capture_window", { app_name: "StoryTerm" });
        assert.deepEqual(sizeOf(frame), sizeOf(plain));
        const cell = { left: column * frame.width / GRID.columns, right: (column + 1) * frame.width / GRID.columns,
                       top: row * frame.height / GRID.rows, bottom: (row + 1) * frame.height / GRID.rows };
        for (let y = 0; y < frame.height; y++) {
            for (let x = 0; x < frame.width; x++) {
                const within = x > cell.left - 1 && x < cell.right && y > cell.top - 1 && y < cell.bottom;
                assert.ok(within || frame.at(x, y) === plain.at(x, y), `(${x}, ${y}) is ${frame.at(x, y)}`);
            }
        }
        const middle = [(cell.left + cell.right) / 2 | 0, (cell.top + cell.bottom) / 2 | 0];
        // The box is two pixels wide, of which its soft edges leave one whole.
        for (const [x, y] of [[Math.ceil(cell.left), middle[1]], [Math.ceil(cell.right) - 2, middle[1]],
                              [middle[0], Math.ceil(cell.bottom) - 2]]) {
            const ground = plain.at(x, y);
            const [red, groundRed] = [frame.at(x, y), ground].map((colour) => channels(colour)[0]);
            const share = (red - groundRed) / (channels(RED)[0] - groundRed);
            // 0.4 and half of the changed part, which is a small one.
            assert.ok(share > 0.4 && share < 0.6, `(${x}, ${y}): ${share} of red`);
            assert.ok(nearly(frame.at(x, y), blend(RED, ground, share)), `(${x}, ${y}) is ${frame.at(x, y)} on ${ground}`);
        }
    }

    it("counts what goes on and on", () => withWindowAndClient(desktop, "BusyTerm", async (window, client) => {
        const recording = await Recording.start(desktop, client, "BusyTerm");
        await recording.events();
        const busy = "visual_change | New activity in bottom-right area (1 cells changed).";
        const interrupting = "visual_change | New activity in top-left area (1 cells changed).";
        let counted;
        let colour = 17;
        await until("a run of small changes is interrupted", async () => {
            await keepChanging(desktop, window, 7, 5, 5);
            const before = await recording.poll();
            assert.ok(before.length === 1 && before[0].startsWith(busy), before.join("\n"));
            fill(desktop, window, 0, 0, colour += 30);
            const events = await recording.events();
            // A look may have found the last of the run and its interruption at once.
            const both = /visual_change \| New activity in \S+ area \(2 cells changed\)\./;
            assert.ok(events.at(-1).startsWith(interrupting) || both.test(events.at(-1)), events.join("\n"));
            assert.ok(events.length <= 2, events.join("\n"));
            counted = events.length === 2 &&
                events[0].match(/^minor_changes \| (\d+) minor update\(s\) \(continuous activity in active regions\)$/);
            return counted;
        }, 30);
        assert.ok(Number(counted[1]) >= 1 && Number(counted[1]) < 5, counted[0]);

        fillAll(window, 18);
        await until("everything is active", async () =>
            (await recording.poll()).some((event) => event.startsWith("major_change ")));
        await keepChanging(desktop, window, 4, 3, 5);
        const { markdown, rows } = await recording.stop();
        const last = rows.at(-2);
        const [, atTheEnd] = last[2].match(/^(\d+) minor update\(s\) in active regions$/) ?? assert.fail(last.join(" | "));
        assert.deepEqual([last[1], last[3]], ["minor_changes", "—"]);
        assert.ok(Number(atTheEnd) >= 1 && Number(atTheEnd) <= 5);
        const visual = rows.filter(([, event]) => event === "visual_change").length;
        const sum = rows.filter(([, event]) => event === "minor_changes")
            .reduce((total, [, , details]) => total + parseInt(details, 10), 0);
        assert.ok(markdown.includes(`\n- **Minor changes:** ${visual} visual + ${sum} coalesced minor updates\n`), markdown);
    }));

    it("goes on when a second one is asked for", () => withWindowAndClient(desktop, "OnceTerm", async (window, client) => {
        const recording = await Recording.start(desktop, client, "OnceTerm");
        await recording.events();
        const known = sessionIds(desktop);
        const { error, text } = await call(client, "start_recording", { app_name: "OnceTerm" });
        assert.ok(error);
        assert.equal(text, INVALID_ARGUMENTS);
        assert.deepEqual(sessionIds(desktop), known);
        fill(desktop, window, 5, 5, 196);
        assert.match((await recording.events())[0], /^visual_change /);
        const { rows } = await recording.stop();
        assert.deepEqual(rows.map(([, event]) => event), ["recording_start", "visual_change", "recording_end"]);

        // After the end there is nothing against another one, which has a story of its own.
        const next = await Recording.start(desktop, client, "OnceTerm");
        assert.match((await next.events()).join(), /^recording_start [^,]*$/);
        assert.equal((await next.stop()).rows.length, 2);
        assert.equal(readlinkSync(latest()), next.folder);
    }));

    it("knows nothing before the first start", () => withProcess(desktop.env, async (server) => {
        const poll = await server.callTool("poll_recording", {});
        assert.deepEqual([poll.error, poll.text], [false, NOT_RECORDING]);
        const stop = await server.callTool("stop_recording", {});
        assert.deepEqual([stop.error, stop.text], [true, INVALID_ARGUMENTS]);
    }));

    it("needs the name of an application that has a window", () => withProcess(desktop.env, async (server) => {
        const known = sessionIds(desktop);
        for (const name of [undefined, null, 7, true, ["xterm"], {}, "NoSuch", "\0"]) {
            const { error, text } = await server.callTool("start_recording", { app_name: name });
            assert.deepEqual([error, text], [true, INVALID_ARGUMENTS], JSON.stringify(name));
        }
        assert.equal((await server.callTool("poll_recording", {})).text, NOT_RECORDING);
        assert.deepEqual(sessionIds(desktop), known);
    }));

    it("outlives its window", () => withWindowAndClient(desktop, "ShortTerm", async (window, client) => {
        const recording = await Recording.start(desktop, client, "ShortTerm");
        await recording.events();
        await window.close();
        await until("the window is gone", async () => !(await call(client, "list_windows")).text.includes("ShortTerm"));
        await pause(700);
        assert.deepEqual(await recording.poll(), []);
        const { items, markdown, rows } = await recording.stop();
        assert.deepEqual(rows.map(([, event]) => event), ["recording_start", "recording_end"]);
        assert.match(rows[1][2], /^Recording stopped \(end frame capture failed: ..+\)$/);
        assert.equal(rows[1][3], "—");
        assert.ok(!markdown.includes("**End frame:**"), markdown);
        assert.deepEqual(items.slice(1).filter((item) => typeof item === "string"), ["--- frame-000-start.png ---"]);
    }));

    it("follows its window over the screen, out of it and to another size", () =>
        withWindowAndClient(desktop, "MobileTerm", async (window, client) => {
            const before = frameSize(desktop, window);
            const recording = await Recording.start(desktop, client, "MobileTerm");
            await recording.events();
            await desktop.move(window.id, 500, 300);
            await desktop.move(window.id, 1150, 700);
            await pause(700);
            // Where it lies makes no difference to what it shows.
            assert.deepEqual(await recording.poll(), []);
            await desktop.move(window.id, 30, 30);
            window.size = await desktop.resize(window.id, [600, 420]);
            await until("its pictures are larger", async () => {
                fill(desktop, window, 2, 2, 196);
                await pause(400);
                fill(desktop, window, 2, 2, 21);
                return (await recording.poll()).some((event) => {
                    const [width, height] = sizeOf(recording.picture(changeFile(event)));
                    return width > before[0] && height > before[1];
                });
            });
            const { items } = await recording.stop();
            assert.deepEqual(items.filter((item) => typeof item !== "string").map(sizeOf), [before, frameSize(desktop, window)]);
        }));

    for (const interval of [0, -5]) {
        it(`looks often and yet rests at an interval of ${interval} ms`, () => withWindow(desktop, "HastyTerm", (window) =>
            withProcess(desktop.env, async (server) => {
                const recording = await Recording.start(desktop, server, "HastyTerm", { interval_ms: interval });
                await recording.events();
                const start = { wall: Date.now(), cpu: cpuMilliseconds(server.process.pid) };
                fill(desktop, window, 0, 0, 196);
                assert.match((await recording.events())[0], /^visual_change .*top-left/);
                await pause(1500);
                const share = (cpuMilliseconds(server.process.pid) - start.cpu) / (Date.now() - start.wall);
                assert.ok(share < 0.6, `${share} of a processor`);
                await recording.stop();
            })));
    }

    it("takes intervals of any length, and a second for what is none", () => withWindow(desktop, "PaceTerm", () =>
        withProcess(desktop.env, async (server) => {
            for (const [interval, stated] of [[1, 1], [1e12, 1e12], [9007199254740991, 9007199254740991],
                                              [-9007199254740991, -9007199254740991], [undefined, 1000], [null, 1000],
                                              ["250", 1000], [250.5, 1000], [[250], 1000], [true, 1000], [1e300, 1000]]) {
                const recording = await Recording.start(desktop, server, "PaceTerm", { interval_ms: interval }, stated);
                assert.match((await recording.events())[0], /^recording_start /);
                const { rows } = await recording.stop();
                assert.equal(rows.at(-1)[1], "recording_end");
            }
        })));

    it("ends with its agent, and its report is written", () => withWindow(desktop, "LeftTerm", async (window) => {
        let recording;
        await withProcess(desktop.env, async (server) => {
            recording = await Recording.start(desktop, server, "LeftTerm");
            await recording.events();
            fill(desktop, window, 7, 0, 196);
            await recording.events();
        });
        const markdown = recording.report();
        assert.match(markdown, /\| visual_change \| New activity in top-right area/);
        const [, endName] = markdown.match(/\| recording_end \| .* \| (frame-\d+-end\.png) \|/);
        assert.deepEqual(sizeOf(recording.picture(endName)), frameSize(desktop, window));
        assert.equal(readlinkSync(latest()), recording.folder);
    }));

    it("leaves its pictures when the process is killed", () => withWindow(desktop, "KilledTerm", async (window) => {
        const server = new RawProcess(desktop.env);
        const recording = await Recording.start(desktop, server, "KilledTerm", { interval_ms: 100 });
        await recording.events();
        fill(desktop, window, 2, 5, 196);
        const name = changeFile((await recording.events())[0]);
        server.process.kill("SIGKILL");
        assert.equal(await server.closed, "SIGKILL");
        for (const file of ["frame-000-start.png", name]) {
            assert.deepEqual(sizeOf(recording.picture(file)), frameSize(desktop, window));
        }
        assert.ok(!existsSync(recording.file("SESSION.md")));
        await assertRecords(desktop.env, "KilledTerm");
    }));

    /// Another process can start and stop a recording.
    const assertRecords = (env, appName) => withProcess(env, async (server) => {
        const recording = await Recording.start(desktop, server, appName);
        await recording.events();
        await recording.stop();
    });

    describe("where nothing can be written", () => {
        const base = () => dirname(sessionsFolder(desktop));
        beforeEach(() => rmSync(base(), { recursive: true, force: true }));

        for (const [what, prepare] of [
            ["because a file has the name of the folder for sessions", () => {
                mkdirSync(base());
                writeFileSync(sessionsFolder(desktop), "a file");
                return sessionsFolder(desktop);
            }],
            ["because a file has the name of the data folder", () => {
                writeFileSync(base(), "a file");
                return base();
            }],
        ]) {
            it(what, () => withWindow(desktop, "NowhereTerm", async (window) => {
                // Before the process starts, which makes its folders then.
                const file = prepare();
                await withProcess(desktop.env, (server) => assertRecordsNothing(server, window));
                assert.equal(readFileSync(file, "utf8"), "a file");
            }));
        }

        async function assertRecordsNothing(server, window) {
            const started = await server.callTool("start_recording", { app_name: "NowhereTerm", interval_ms: 250 });
            assert.ok(!started.error, started.text);
            const [, id, path] = started.text.match(/\nSession ID: (\S+)\nSession path: (.*)\n/);
            const recording = new Recording(desktop, server, id);
            assert.equal(path, recording.folder);
            assert.equal((await recording.events()).length, 1);
            fill(desktop, window, 0, 0, 196);
            assert.match((await recording.events())[0], /^visual_change /);
            const frame = await server.callTool("read_frame", { session_id: id, frame: "frame-000-start.png" });
            assert.deepEqual([frame.error, frame.text], [true, INVALID_ARGUMENTS]);
            const { error, items } = await server.callTool("stop_recording", {});
            assert.ok(!error);
            assert.deepEqual(items, [`Recording stopped.\nSession ID: ${id}\nSession path: ${path}`]);
            assert.equal((await server.callTool("poll_recording", {})).text, NOT_RECORDING);
            assert.equal((await server.callTool("get_annotations", {})).text,
                         "No annotations found. Use Cmd+Ctrl+P to place markers on screen, then submit.");
        }
    });
});
