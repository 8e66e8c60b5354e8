// What the tools write: names that applications choose never decide where, and no disk trouble reaches the agent.
import assert from "node:assert/strict";
import { mkdirSync, readdirSync, readFileSync, rmSync, statSync, writeFileSync } from "node:fs";
import { dirname, join } from "node:path";
import { after, before, describe, it } from "node:test";
import { startDesktop } from "./lib/desktop.mjs";
import { call, connect, withProcess } from "./lib/orvane.mjs";
import { decodePng } from "./lib/png.mjs";

/// Every file below a folder, by its path from there.
function files(folder, prefix = "") {
    return readdirSync(folder, { withFileTypes: true }).flatMap((entry) => entry.isDirectory()
        ? files(join(folder, entry.name), `${prefix}${entry.name}/`) : [prefix + entry.name]);
}

describe("names of saved pictures", () => {
    let desktop;
    let client;
    before(async () => {
        desktop = await startDesktop("--size", "1000x700");
        client = await connect(desktop.env);
    });
    after(async () => {
        await client?.close();
        await desktop?.stop();
    });

    const names = {
        "a way up": "../../../escape",
        "an absolute path": "/tmp/orvane-escape",
        "slashes": "a/b/c\\d",
        "a newline and a tab": "line\nbreak\tname",
        "two dots": "..",
        "a hidden file": ".hidden",
        "an option": "-rf *",
        "shell signs": "$(touch escape)`touch escape`;%s%n&|<>\"'?*",
        "a bell and an escape": "bell\x07\x1b[31m",
        "10,000 letters": "y".repeat(10000),
        "letters of other scripts": "ünïcødé-窓",
    };
    for (const [what, className] of Object.entries(names)) {
        it(what, async () => {
            const window = await desktop.openWindow({ className });
            const listed = JSON.parse((await call(client, "list_windows")).text)
                .find(({ windowTitle }) => windowTitle === window.title);
            assert.ok(listed, "the window is not listed");
            const before = new Set(files(desktop.folder));
            const captured = await call(client, "capture_window", { app_name: listed.appName });
            assert.ok(!captured.error, captured.text);
            assert.ok(captured.text.startsWith(`Captured ${listed.appName} — ${window.title}.\n`));
            const region = await call(client, "capture_window_region",
                                      { app_name: listed.appName, x: 0, y: 0, width: 20, height: 20 });
            assert.ok(!region.error, region.text);
            await call(client, "capture_diff", { app_name: listed.appName });
            await call(client, "capture_diff", { app_name: listed.appName });

            const added = files(desktop.folder).filter((name) => !before.has(name));
            assert.equal(added.length, 4, added.join("\n").slice(0, 500));
            for (const path of added) {
                assert.equal(dirname(path), "home/.orvane/captures");
                const name = path.slice("home/.orvane/captures/".length);
                assert.match(name, /^\d{8}-\d{6}-[^/\0-\x1f\x7f]*\.png$/);
                assert.ok(Buffer.byteLength(name) <= 255);
                decodePng(readFileSync(join(desktop.folder, path)));
            }
            await window.close();
        });
    }
});

describe("a data folder that cannot be written", () => {
    let desktop;
    before(async () => {
        desktop = await startDesktop("--size", "800x600");
        await desktop.openWindow({ className: "Target", position: [100, 100] });
    });
    after(() => desktop?.stop());

    /// All capture tools give their pictures with this environment.
    const assertAllAnswer = (env, options) => withProcess(env, async (server) => {
        for (const [name, args, pictures] of [
            ["list_windows", {}, 0],
            ["capture_window", { app_name: "Target" }, 1],
            ["capture_window_region", { app_name: "Target", x: 5, y: 5, width: 60, height: 50 }, 1],
            ["capture_region", { x: 0, y: 0, width: 300, height: 200 }, 1],
            ["capture_diff", { app_name: "Target" }, 0],
            ["capture_diff", { app_name: "Target" }, 2],
        ]) {
            const { error, text, images } = await server.callTool(name, args);
            assert.ok(!error, `${name}: ${text}`);
            assert.equal(images.length, pictures, name);
        }
    }, options);

    const orvane = () => join(desktop.home, ".orvane");
    const clear = () => rmSync(orvane(), { recursive: true, force: true });

    it("because a file has its name", async () => {
        clear();
        writeFileSync(orvane(), "a file");
        await assertAllAnswer(desktop.env);
        assert.equal(readFileSync(orvane(), "utf8"), "a file");
    });

    it("because a file has the name of the folder for captures", async () => {
        clear();
        mkdirSync(orvane());
        writeFileSync(join(orvane(), "captures"), "a file");
        await assertAllAnswer(desktop.env);
        assert.equal(readFileSync(join(orvane(), "captures"), "utf8"), "a file");
    });

    it("because there is no home folder", async () => {
        clear();
        await assertAllAnswer({ ...desktop.env, HOME: "/dev/null/nowhere" });
    });

    it("because the disk is full", async () => {
        clear();
        // A limit of one block a file, with the signal for it ignored, fails a write just as a full disk does.
        await assertAllAnswer(desktop.env, {
            command: "sh",
            args: ["-c", 'trap "" XFSZ; ulimit -f 1; exec "$0" --mcp', (await import("./lib/orvane.mjs")).EXECUTABLE],
        });
        for (const name of files(orvane())) {
            assert.ok(statSync(join(orvane(), name)).size <= 1024);
        }
    });
});
