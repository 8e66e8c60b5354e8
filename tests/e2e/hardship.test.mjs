// A screen that is not there, says no, dies or hangs: every call gets an answer, and the server lives on.
import assert from "node:assert/strict";
import { spawnSync } from "node:child_process";
import { describe, it } from "node:test";
import { bareHome, startDesktop } from "./lib/desktop.mjs";
import { EXECUTABLE, INVALID_ARGUMENTS, PERMISSION_DENIED, withProcess } from "./lib/orvane.mjs";

const REGION = { x: 0, y: 0, width: 40, height: 30 };

/// Every tool that needs the screen fails in words, and the process goes on.
async function assertFailsInWords(server, seconds) {
    const list = await server.callTool("list_windows", {}, seconds);
    assert.ok(list.error, list.text);
    assert.match(list.text, /DISPLAY/);
    const region = await server.callTool("capture_region", REGION, seconds);
    assert.ok(region.error, region.text);
    for (const name of ["capture_window", "capture_diff"]) {
        const { error, text } = await server.callTool(name, { app_name: "xterm" }, seconds);
        assert.ok(error);
        assert.equal(text, INVALID_ARGUMENTS);
    }
    const part = await server.callTool("capture_window_region", { app_name: "xterm", ...REGION }, seconds);
    assert.ok(part.error);
    const activation = await server.callTool("activate_window", { app_name: "xterm" }, seconds);
    assert.ok(activation.error);
    const unknown = await server.callTool("no_such_tool", {});
    assert.equal(unknown.text, "Error: Unknown tool: no_such_tool");
    await server.assertAlive();
}

describe("no screen", () => {
    it("is what the application says before it fails", () => {
        const place = bareHome();
        try {
            const { status, stderr } = spawnSync(EXECUTABLE, { env: place.env, encoding: "utf8", timeout: 20000 });
            assert.equal(status, 1, stderr);
            assert.match(stderr, /^orvane: There is no display: DISPLAY is not set\. .*\n$/);
        } finally {
            place.remove();
        }
    });

    const unreachable = { "no DISPLAY": {}, "an empty DISPLAY": { DISPLAY: "" }, "a refused DISPLAY": { DISPLAY: ":7777" },
                          "a DISPLAY that is no name of one": { DISPLAY: "nonsense" },
                          "a DISPLAY of a host that does not exist": { DISPLAY: "127.0.0.1:7777" } };
    for (const [what, variables] of Object.entries(unreachable)) {
        it(what, { timeout: 60000 }, async () => {
            const place = bareHome();
            try {
                await withProcess({ ...place.env, ...variables }, (server) => assertFailsInWords(server));
            } finally {
                place.remove();
            }
        });
    }
});

describe("a screen that turns bad", () => {
    it("refuses without the right cookie", async () => {
        const desktop = await startDesktop("--size", "640x480");
        try {
            await withProcess({ ...desktop.env, XAUTHORITY: "/dev/null" }, (server) => assertFailsInWords(server));
        } finally {
            await desktop.stop();
        }
    });

    it("dies in the middle of use", { timeout: 60000 }, async () => {
        const desktop = await startDesktop("--size", "640x480");
        try {
            await desktop.openWindow({ className: "Victim" });
            await withProcess(desktop.env, async (server) => {
                assert.ok(!(await server.callTool("capture_window", { app_name: "Victim" })).error);
                process.kill(desktop.xserver, "SIGKILL");
                await assertFailsInWords(server);
            });
        } finally {
            await desktop.stop();
        }
    });

    it("dies while nobody asks it anything", { timeout: 60000 }, async () => {
        const desktop = await startDesktop("--size", "640x480");
        try {
            await withProcess(desktop.env, async (server) => {
                await server.assertAlive();
                process.kill(desktop.xserver, "SIGTERM");
                await assertFailsInWords(server);
            });
        } finally {
            await desktop.stop();
        }
    });

    it("hangs for a while: a capture gives up after 5 seconds, and works again afterwards", { timeout: 60000 }, async () => {
        const desktop = await startDesktop("--size", "640x480");
        try {
            await withProcess(desktop.env, async (server) => {
                assert.ok(!(await server.callTool("capture_region", REGION)).error);
                process.kill(desktop.xserver, "SIGSTOP");
                const start = Date.now();
                const hung = await server.callTool("capture_region", REGION, 30);
                const seconds = (Date.now() - start) / 1000;
                assert.equal(hung.text, PERMISSION_DENIED);
                assert.ok(seconds >= 4.9 && seconds < 15, `after ${seconds} s`);
                await server.assertAlive();
                process.kill(desktop.xserver, "SIGCONT");
                const again = await server.callTool("capture_region", REGION, 30);
                assert.ok(!again.error, again.text);
                assert.deepEqual([again.images[0].width, again.images[0].height], [40, 30]);
            });
        } finally {
            process.kill(desktop.xserver, "SIGCONT");
            await desktop.stop();
        }
    });
});
