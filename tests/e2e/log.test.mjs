// What the program says on standard error: nothing but its own lines, and nobody has to read them.
import assert from "node:assert/strict";
import { chmodSync, rmSync } from "node:fs";
import { after, afterEach, before, describe, it } from "node:test";
import { Application, applications, endApplication } from "./lib/application.mjs";
import { startDesktop, until } from "./lib/desktop.mjs";
import { RawProcess, withProcess } from "./lib/orvane.mjs";
import { Recording, pause, sessionIds, sessionsFolder, withWindow } from "./lib/recording.mjs";

let desktop;
let bare;
before(async () => {
    desktop = await startDesktop("--size", "1280x800");
    desktop.settings({ SaveRawVideo: true, HasOnboarded: true });
    const { DISPLAY, XAUTHORITY, HOME } = desktop.env;
    bare = { DISPLAY, ...(XAUTHORITY ? { XAUTHORITY } : {}), HOME };
});
after(() => desktop?.stop());

afterEach(async () => {
    for (const pid of applications(desktop.home)) {
        await endApplication(pid);
    }
});

/// Ends the reading side of a process's standard error, so that its next line there meets nobody.
async function stopReading({ process: { stderr } }) {
    stderr.destroy();
    await until("nobody reads it", () => stderr.closed);
}

describe("a log that nobody reads", () => {
    it("ends no tool server and no recording of one", () => withWindow(desktop, "DeafTerm", async () => {
        const server = new RawProcess(desktop.env);
        await server.assertAlive();
        await stopReading(server);
        const recording = await Recording.start(desktop, server, "DeafTerm");
        await pause(500);
        await recording.stop();
        await server.assertAlive();
        assert.equal(await server.end(), 0);
    }));

    it("ends no tool server that a signal asks to finish its recording", () => withWindow(desktop, "DeafTerm", async () => {
        const server = new RawProcess(desktop.env);
        await server.assertAlive();
        await stopReading(server);
        const recording = await Recording.start(desktop, server, "DeafTerm");
        server.process.kill("SIGTERM");
        assert.equal(await server.closed, 0);
        assert.match(recording.report(), /\| recording_end \| Recording stopped/);
    }));

    it("ends no application and no recording of one", () => withWindow(desktop, "DeafTerm", async () => {
        rmSync(sessionsFolder(desktop), { recursive: true, force: true });
        const application = await Application.start(desktop);
        await stopReading(application);
        const { body } = await application.post({ jsonrpc: "2.0", id: 1, method: "tools/call", params: {
            name: "start_recording", arguments: { app_name: "DeafTerm" } } });
        assert.match(JSON.parse(body).result.content[0].text, /^Recording started for DeafTerm\./);
        assert.equal(await application.stop(), 0);
        assert.match(new Recording(desktop, null, sessionIds(desktop)[0]).report(), /\| recording_end \| Recording stopped/);
    }));
});

describe("an environment that names nothing but the display and the home folder", () => {
    const serve = (env, expected) => withProcess(env, async (server) => {
        await server.assertAlive();
        const { error, text } = await server.callTool("capture_region", { x: 0, y: 0, width: 200, height: 100 });
        assert.ok(!error, text);
        await server.assertSaid(`orvane: starting MCP (smart launcher)\norvane: ${expected}\n`);
    });
    const alone = "launching app for shared-state MCP…\norvane: app host unavailable — serving MCP in-process";

    it("makes a tool server say nothing else", () => serve({ ...bare, ORVANE_START_APPLICATION: "0" }, alone));

    it("nor does a runtime folder that is none", async () => {
        chmodSync(desktop.home, 0o755);
        await serve({ ...bare, ORVANE_START_APPLICATION: "0", XDG_RUNTIME_DIR: desktop.home }, alone);
        await serve({ ...bare, ORVANE_START_APPLICATION: "0", XDG_RUNTIME_DIR: "/nowhere" }, alone);
    });

    it("makes the application say nothing but its own lines", async () => {
        const application = await Application.start(desktop, bare);
        await until("it runs", () => application.stderr.includes("orvane: running."));
        await serve(bare, `proxying MCP to ${application.url}`);
        assert.equal(await application.stop(), 0);
        const ours = [/^the desktop's keyring does not serve/, /^MCP HTTP host on /, /^hasOnboarded=true/, /^running\. /,
                      /^Not available in this build: /];
        for (const line of application.stderr.trimEnd().split("\n")) {
            assert.ok(ours.some((known) => line.startsWith("orvane: ") && known.test(line.slice(8))), line);
        }
    });
});
