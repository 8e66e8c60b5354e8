// A virtual desktop of a test's own, with windows on it.
import assert from "node:assert/strict";
import { spawn, execFileSync } from "node:child_process";
import { once } from "node:events";
import { mkdirSync, mkdtempSync, rmSync, writeFileSync } from "node:fs";
import { tmpdir } from "node:os";
import { join } from "node:path";
import { fileURLToPath } from "node:url";
import { isDeepStrictEqual } from "node:util";
import { colours, decodeRoot, decodeXwd, samePixels } from "./png.mjs";

const WITH_DESKTOP = fileURLToPath(new URL("../../../scripts/with-desktop", import.meta.url));
const ROOT_PICTURE = fileURLToPath(new URL("root-picture", import.meta.url));

/// Waits until `condition` gives something true, and gives that.
export async function until(what, condition, seconds = 10) {
    const deadline = Date.now() + seconds * 1000;
    for (;;) {
        const value = await condition();
        if (value) {
            return value;
        }
        assert.ok(Date.now() < deadline, `in ${seconds} s not so: ${what}`);
        await new Promise((resolve) => setTimeout(resolve, 30));
    }
}

/// For tool servers that are tested without the application: they serve by themselves.
const ALONE = { ORVANE_START_APPLICATION: "0" };

/// An environment without a desktop, with a home folder of its own. remove() takes the folder away.
export function bareHome() {
    const home = mkdtempSync(join(tmpdir(), "orvane-e2e-"));
    return {
        home,
        env: { PATH: process.env.PATH, LANG: "C.UTF-8", HOME: home, XDG_RUNTIME_DIR: home, ...ALONE },
        remove: () => rmSync(home, { recursive: true, force: true }),
    };
}

/// Starts a desktop with options of scripts/with-desktop. Call stop() in the end.
export async function startDesktop(...options) {
    const holder = spawn(WITH_DESKTOP, [...options, "--", "sh", "-c", "env -0; exec 1>&-; cat >/dev/null"],
                         { stdio: ["pipe", "pipe", "inherit"] });
    const ended = once(holder, "exit");
    let text = "";
    holder.stdout.setEncoding("utf8").on("data", (block) => { text += block; });
    await once(holder.stdout, "end");
    const env = Object.fromEntries(text.split("\0").filter(Boolean).map((entry) => {
        const equals = entry.indexOf("=");
        return [entry.slice(0, equals), entry.slice(equals + 1)];
    }));
    assert.ok(env.ORVANE_DESKTOP_DIR, "the desktop did not start");
    return new Desktop(env, holder, ended);
}

class Desktop {
    constructor(env, holder, ended) {
        /// Of a tool server that serves by itself, and of one that may start the application.
        this.env = { ...env, ...ALONE };
        this.applicationEnv = env;
        this.home = env.HOME;
        this.folder = env.ORVANE_DESKTOP_DIR;
        this.xserver = Number(env.ORVANE_DESKTOP_XSERVER_PID);
        this.windowCount = 0;
        this.holder = holder;
        this.ended = ended;
    }

    async stop() {
        this.holder.stdin.end();
        await this.ended;
    }

    run(command, ...args) {
        return execFileSync(command, args, { env: this.env, maxBuffer: 1 << 28, stdio: ["ignore", "pipe", "pipe"] });
    }

    /// Makes these the user's settings, all others having their defaults.
    settings(values) {
        const folder = join(this.env.XDG_CONFIG_HOME, "orvane");
        mkdirSync(folder, { recursive: true });
        writeFileSync(join(folder, "settings.json"), JSON.stringify(values));
    }

    /// What a window, or with "root" the whole screen, looks like.
    picture(id) {
        return id === "root" ? decodeRoot(this.run(ROOT_PICTURE))
            : decodeXwd(this.run("xwd", "-silent", "-id", String(id)));
    }

    /// Opens a terminal of one solid colour, without a cursor, and waits until it shows it.
    /// `size` is about that of the client area in pixels, of which a terminal takes whole characters; the window's
    /// own `size` is the exact one. `position` is that of the outer corner. `show(text)` prints in the terminal.
    async openWindow({ className = "XTerm", colour = "#204060", text = "", size = [400, 300], position } = {}) {
        const title = `window ${++this.windowCount}`;
        const fifo = join(this.folder, `screen-${this.windowCount}`);
        this.run("mkfifo", fifo);
        const place = position ? `+${position[0]}+${position[1]}` : "";
        const program = spawn("xterm", [
            // Both parts of WM_CLASS, or the terminal's own desktop entry would name the application.
            "-name", className, "-class", className, "-title", title, "-geometry", `10x4${place}`, "-b", "0", "-bg", colour,
            "-fg", "#f0f0f0", "-fa", "DejaVu Sans Mono", "-fs", "9", "+sb", "-e", "sh", "-c",
            // Opened for both directions, so that reading does not end with the first writer.
            'printf "\\033[?25l\\033[?12l"; exec 3<>"$0"; while read -r line <&3; do printf "%b" "$line"; done', fifo,
        ], { env: this.env, stdio: "ignore" });
        const exit = once(program, "exit");
        const found = () => {
            try {
                return this.run("xdotool", "search", "--onlyvisible", "--name", `^${title}$`).toString().trim();
            } catch {
                return "";
            }
        };
        const id = Number(await until(`${title} shows`, found));
        const window = {
            id, title, colour, pid: program.pid,
            size: await this.resize(id, size),
            show: (line) => writeFileSync(fifo, `${line}\n`),
            close: async () => {
                program.kill("SIGTERM");
                await exit;
            },
        };
        await until(`${title} is painted`, () => {
            const counts = colours(this.picture(id));
            return counts.size === 1 && counts.has(colour);
        });
        if (text) {
            window.show(text);
            await until(`${title} shows its text`, () => colours(this.picture(id)).size > 3);
            await this.settled(id);
        }
        return window;
    }

    /// Gives a terminal about so many pixels and returns how many it has then.
    async resize(id, [width, height]) {
        this.run("xdotool", "windowsize", String(id), String(width), String(height));
        return until("the window has its size", () => {
            const { width: actualWidth, height: actualHeight } = this.picture(id);
            const near = (actual, wanted) => actual <= wanted && actual > wanted - 25;
            return near(actualWidth, width) && near(actualHeight, height) && [actualWidth, actualHeight];
        });
    }

    /// Moves a window's outer corner, also beyond the edge of the screen.
    async move(id, x, y) {
        this.run("xdotool", "windowmove", String(id), String(x), String(y));
        await until("the window has its place", () => {
            const frame = this.frame(id);
            return Math.abs(frame.x - x) < 40 && Math.abs(frame.y - y) < 40;
        });
    }

    /// Waits until a window looks the same twice in a row.
    async settled(id) {
        let last = "";
        await until("the window does not change any more", () => {
            const now = this.run("xwd", "-silent", "-id", String(id)).toString("latin1");
            const same = now === last;
            last = now;
            return same;
        });
    }

    /// Does something that looks at a window, again where the window changed meanwhile, and gives what came of it
    /// together with the window's picture and frame of that time.
    async whileSteady(id, action) {
        const look = () => ({ picture: this.picture(id), frame: this.frame(id) });
        return until("the window stays as it is", async () => {
            const before = look();
            const result = await action();
            const after = look();
            const same = samePixels(before.picture, after.picture) && isDeepStrictEqual(before.frame, after.frame);
            return same && { result, ...after };
        });
    }

    /// Where a window lies with its decorations: { x, y, width, height, left, top }, the latter two being the
    /// distance from its outer corner to that of its client area.
    frame(id) {
        const info = this.run("xwininfo", "-id", String(id)).toString();
        const number = (label) => Number(info.match(new RegExp(`${label}:\\s*(-?\\d+)`))[1]);
        const extents = this.run("xprop", "-id", String(id), "_NET_FRAME_EXTENTS").toString().match(/= (.*)/);
        const [left, right, top, bottom] = extents ? extents[1].split(",").map(Number) : [0, 0, 0, 0];
        return {
            x: number("Absolute upper-left X") - left,
            y: number("Absolute upper-left Y") - top,
            width: number("Width") + left + right,
            height: number("Height") + top + bottom,
            left,
            top,
        };
    }
}
