// What tests of recordings share: windows that change on command, and what an agent hears of one recording.
import assert from "node:assert/strict";
import { spawn } from "node:child_process";
import { once } from "node:events";
import { existsSync, readFileSync, readdirSync } from "node:fs";
import { join } from "node:path";
import { fileURLToPath } from "node:url";
import { until } from "./desktop.mjs";
import { RawProcess, call, connect } from "./orvane.mjs";
import { decodePng } from "./png.mjs";

const TEST_WINDOW = fileURLToPath(new URL("../../../build/release/bin/test-window", import.meta.url));

/// What the screen is divided into where changes are sought.
export const GRID = { columns: 8, rows: 6 };

export const sizeOf = ({ width, height }) => [width, height];

/// Of a window with its decorations, as pictures show it.
export const frameSize = (desktop, window) => sizeOf(desktop.frame(window.id));

/// Lets time pass in which a recorder looks several times: nothing outside tells of a look that finds nothing.
export const pause = (milliseconds) => new Promise((resolve) => setTimeout(resolve, milliseconds));

export const sessionsFolder = (desktop) => join(desktop.home, ".orvane/sessions");

export function sessionIds(desktop) {
    const folder = sessionsFolder(desktop);
    return existsSync(folder) ? readdirSync(folder).filter((name) => name !== "latest") : [];
}

/// A window for one test, of an application of its own, closed in the end.
export async function withWindow(desktop, className, body, options = {}) {
    const window = await desktop.openWindow({ className, position: [60, 60], ...options });
    try {
        await body(window);
    } finally {
        await window.close();
    }
}

/// As withWindow, and with a client of the SDK that nobody else uses.
export const withWindowAndClient = (desktop, className, body, options) => withWindow(desktop, className, async (window) => {
    const client = await connect(desktop.env);
    try {
        await body(window, client);
    } finally {
        await client.close();
    }
}, options);

/// Opens a window of that size in the screen's corner that never shows the same twice. Call close() in the end.
export async function openNoise(desktop, className, [width, height]) {
    const program = spawn(TEST_WINDOW, ["--class", className, "--geometry", `${width}x${height}+0+0`, "--undecorated",
                                        "--noise"], { env: desktop.env, stdio: ["pipe", "pipe", "inherit"] });
    const exit = once(program, "exit");
    const [line] = await once(program.stdout.setEncoding("utf8"), "data");
    assert.match(line, /^ready \d+\n$/);
    return {
        close: async () => {
            program.kill("SIGTERM");
            await exit;
        },
    };
}

/// Fills two characters in the middle of one cell of the grid with a colour of the terminal's palette. A terminal
/// does so in one step, so that no picture shows half of it.
export function fill(desktop, window, column, row, colour) {
    const { width, height, left, top } = desktop.frame(window.id);
    const [columns, lines] = desktop.run("xwininfo", "-id", String(window.id)).toString()
        .match(/-geometry (\d+)x(\d+)/).slice(1).map(Number);
    const x = Math.floor(((column + 0.5) / GRID.columns * width - left) / (window.size[0] / columns));
    const y = Math.floor(((row + 0.5) / GRID.rows * height - top) / (window.size[1] / lines));
    window.show(`\\033[${y + 1};${x + 1}H\\033[48;5;${colour}m\\033[2X\\033[0m`);
}

/// Fills the whole terminal, likewise in one step.
export const fillAll = (window, colour) => window.show(`\\033[48;5;${colour}m\\033[2J\\033[0m`);

/// Changes a cell so many times, each time to another colour, slowly enough for looks in between.
export async function keepChanging(desktop, window, column, row, times) {
    for (let i = 0; i < times; i++) {
        fill(desktop, window, column, row, [196, 21, 226, 51, 201, 46, 231, 88][i]);
        await pause(350);
    }
}

/// The file that the line of a change names.
export const changeFile = (event) => event.match(/ \| (change-\d{3,}\.png)$/)?.[1] ?? assert.fail(event);

/// What an agent has heard of one recording.
export class Recording {
    /// Begins one and checks the answer, which states `stated` for the pace. `server` is a client of the SDK or a
    /// RawProcess.
    static async start(desktop, server, appName, pace = { interval_ms: 250 }, stated = pace.interval_ms) {
        const known = new Set(sessionIds(desktop));
        const recording = new Recording(desktop, server);
        const { error, text } = await recording.call("start_recording", { app_name: appName, ...pace });
        assert.ok(!error, text);
        recording.id = sessionIds(desktop).find((name) => !known.has(name));
        assert.match(recording.id, /^\d{8}-\d{6}\.\d{3}$/);
        assert.equal(text, `Recording started for ${appName}.\nSession ID: ${recording.id}\n` +
            `Session path: ${recording.folder}\nCapturing at ${stated}ms intervals. Call poll_recording to check for ` +
            "changes, read_frame to inspect a frame. Call stop_recording when done.");
        return recording;
    }

    constructor(desktop, server, id) {
        this.desktop = desktop;
        this.call = (name, args = {}) =>
            server instanceof RawProcess ? server.callTool(name, args) : call(server, name, args);
        this.id = id;
        this.lines = [];
    }

    get folder() {
        return join(sessionsFolder(this.desktop), this.id);
    }

    file(name) {
        return join(this.folder, name);
    }

    picture(name) {
        return decodePng(readFileSync(this.file(name)));
    }

    /// As the file's header has it.
    sizeOfPicture(name) {
        const header = readFileSync(this.file(name)).subarray(16, 24);
        return [header.readUInt32BE(0), header.readUInt32BE(4)];
    }

    /// The text of SESSION.md.
    report() {
        return readFileSync(this.file("SESSION.md"), "utf8");
    }

    /// The new events of one poll without their times, which ascend.
    async poll() {
        const { error, text } = await this.call("poll_recording");
        assert.ok(!error, text);
        if (text === `No new events since last poll. Recording is active (session: ${this.id}).`) {
            return [];
        }
        const [session, count, ...lines] = text.split("\n");
        assert.equal(session, `Session: ${this.id}`);
        assert.equal(lines.pop(), "");
        assert.equal(count, `New events (${lines.length}):`);
        assert.ok(lines.length > 0);
        return lines.map((line) => {
            const [, time, event] = line.match(/^ {2}T\+(\d+\.\d)s \| (.*)$/);
            assert.ok(Number(time) >= (this.seconds ?? 0), line);
            this.seconds = Number(time);
            this.lines.push(line.slice(2));
            return event;
        });
    }

    /// Waits for new events.
    events(seconds) {
        return until("something new is told", async () => {
            const events = await this.poll();
            return events.length > 0 && events;
        }, seconds);
    }

    /// Ends it and gives { items, markdown, rows } after checking that the answer, the file and what was polled say the
    /// same; rows are those of the timeline: [time, event, details, file name].
    async stop() {
        const { error, text, items } = await this.call("stop_recording");
        assert.ok(!error, text);
        const markdown = this.report();
        assert.equal(text, `Recording stopped.\nSession ID: ${this.id}\nSession path: ${this.folder}\n\n${markdown}`);
        const table = markdown.split("\n").filter((line) => line.startsWith("| T+"));
        const rows = table.map((line) => line.slice(2, -2).split(" | "));
        this.lines.forEach((line, i) =>
            assert.equal(table[i], `| ${line}${line.split(" | ").length === 3 ? " | —" : ""} |`, "as it was polled"));
        return { items, markdown, rows };
    }
}
