// The tray application: what it leaves where others find it, one copy at a time, how it ends, and the human's recording.
import assert from "node:assert/strict";
import { createServer } from "node:net";
import { existsSync, mkdirSync, readFileSync, readdirSync, rmSync, statSync, utimesSync, writeFileSync } from "node:fs";
import { join } from "node:path";
import { after, before, describe, it } from "node:test";
import { Client } from "@modelcontextprotocol/sdk/client/index.js";
import { StreamableHTTPClientTransport } from "@modelcontextprotocol/sdk/client/streamableHttp.js";
import { Application, applications, endApplication, endpoint, endpointFile, http, withApplication } from "./lib/application.mjs";
import { startDesktop, until } from "./lib/desktop.mjs";
import { RawProcess, call, withProcess } from "./lib/orvane.mjs";
import { Recording, pause, sessionIds, sessionsFolder } from "./lib/recording.mjs";

let desktop;
before(async () => {
    desktop = await startDesktop("--size", "1280x800");
    desktop.settings({ SaveRawVideo: false, HasOnboarded: true });
});
after(() => desktop?.stop());

describe("the application", () => {
    it("tells where it hosts the tools, and takes that back when it ends", async () => {
        let url;
        await withApplication(desktop, async (application) => {
            const text = readFileSync(endpointFile(desktop.home), "utf8");
            const { pid, port, startedAt, token, version } = application.endpoint;
            url = application.url;
            assert.equal(text.trimEnd(), JSON.stringify({ pid, port, startedAt, token, url, version }, null, 4));
            assert.equal(pid, application.process.pid);
            assert.ok(port >= 47600 && port < 47650, port);
            assert.equal(url, `http://127.0.0.1:${port}/mcp`);
            assert.match(token, /^[0-9a-f]{64}$/);
            assert.equal(version, "0.1.0");
            assert.ok(Math.abs(Date.now() - Date.parse(startedAt)) < 60000, startedAt);
            assert.equal(statSync(endpointFile(desktop.home)).mode & 0o777, 0o600);
            assert.ok(existsSync(join(desktop.home, ".orvane/captures")));
            await until("it runs", () => application.stderr.includes(
                "orvane: running. Cmd+Ctrl+P to annotate, Cmd+Ctrl+R to record.\n"));
            assert.ok(application.stderr.includes("orvane: hasOnboarded=true — skipping wizard\n"), application.stderr);
        });
        assert.ok(!existsSync(endpointFile(desktop.home)));
        await assert.rejects(http(url), /ECONNREFUSED/);
    });

    it("keeps its token from one start to the next", async () => {
        const tokens = [];
        for (let i = 0; i < 2; i++) {
            await withApplication(desktop, async (application) => { tokens.push(application.endpoint.token); });
        }
        assert.equal(tokens[0], tokens[1]);
    });

    it("answers over HTTP, with the token only", () => withApplication(desktop, async (application) => {
        const health = await http(application.url.replace("/mcp", "/health"));
        assert.deepEqual([health.status, health.body], [200, '{"ok":true,"server":"orvane"}']);
        const ping = await application.post({ jsonrpc: "2.0", id: 7, method: "ping" });
        assert.equal(ping.status, 200);
        assert.deepEqual(JSON.parse(ping.body), { id: 7, jsonrpc: "2.0", result: {} });
        const odd = await application.post('{"method":"ping","id":-123456789012345678901234567890}');
        assert.equal(odd.body, '{"id":-123456789012345678901234567890,"jsonrpc":"2.0","result":{}}');
        assert.equal((await application.post({ method: "notifications/initialized" })).status, 202);
        const refused = await application.post({ id: 1, method: "ping" }, { authorization: "Bearer 0123" });
        assert.deepEqual([refused.status, refused.body], [401, "Unauthorized"]);
        const foreign = await application.post({ id: 1, method: "ping" }, { origin: "http://example.com" });
        assert.deepEqual([foreign.status, foreign.body], [403, "Forbidden origin"]);
    }));

    it("serves the SDK's HTTP client", () => withApplication(desktop, async (application) => {
        const client = new Client({ name: "orvane-e2e", version: "1.0.0" });
        await client.connect(new StreamableHTTPClientTransport(new URL(application.url), {
            requestInit: { headers: { authorization: `Bearer ${application.endpoint.token}` } } }));
        assert.equal((await client.listTools()).tools.length, 14);
        const { error, text, images } = await call(client, "capture_region", { x: 0, y: 0, width: 200, height: 100 });
        assert.ok(!error, text);
        assert.equal(images.length, 1);
        await client.close();
    }));

    /// Takes the ports from 47600 up to that one; gives what lets go of them again.
    async function takePortsBelow(end) {
        const holders = [];
        for (let port = 47600; port < end; port++) {
            const holder = createServer();
            // A port that another test's application has is taken as well.
            await new Promise((resolve) => { holder.once("error", resolve).listen(port, "127.0.0.1", resolve); });
            holders.push(holder);
        }
        return () => Promise.all(holders.map((holder) => new Promise((resolve) => { holder.close(resolve); })));
    }

    it("hosts the tools on the next port that is free", async () => {
        const letGo = await takePortsBelow(47603);
        try {
            await withApplication(desktop, async ({ endpoint: { port } }) => {
                assert.ok(port >= 47603 && port < 47650, port);
            });
        } finally {
            await letGo();
        }
    });

    it("does without a host where no port is free", async () => {
        const letGo = await takePortsBelow(47650);
        const application = new Application(desktop);
        await until("it says so", () =>
            application.stderr.includes("orvane: could not bind MCP HTTP host (no free port)\n"));
        assert.ok(!existsSync(endpointFile(desktop.home)));
        assert.equal(await application.stop(), 0);
        await letGo();
    });

    /// So many files in `captures` that are long past their time.
    function leaveExpired(count) {
        const folder = join(desktop.home, ".orvane/captures");
        rmSync(folder, { recursive: true, force: true });
        mkdirSync(folder, { recursive: true });
        for (let i = 0; i < count; i++) {
            const file = join(folder, `${i}.png`);
            writeFileSync(file, "");
            utimesSync(file, 1e9, 1e9);
        }
        return () => readdirSync(folder).length;
    }

    it("deletes what has expired", async () => {
        const left = leaveExpired(3);
        await withApplication(desktop, async (application) => {
            await until("it says so", () => application.stderr.includes("orvane: cleaned up 3 expired item(s)\n"));
            assert.equal(left(), 0);
        });
    });

    it("lets nobody wait for the deletion of much that has expired", async () => {
        const left = leaveExpired(60000);
        // On one processor nothing is done beside another thing by chance.
        const [processor] = readFileSync("/proc/self/status", "utf8").match(/(?<=^Cpus_allowed_list:\s*)\d+/m);
        const application = new Application(desktop, desktop.applicationEnv, ["taskset", "--cpu-list", processor]);
        try {
            await until("it runs", () => application.stderr.includes("orvane: running."), 30);
            const ping = await application.post({ jsonrpc: "2.0", id: 7, method: "ping" });
            assert.deepEqual(JSON.parse(ping.body), { id: 7, jsonrpc: "2.0", result: {} });
            assert.ok(left() > 0, "there was nothing to wait for any more");
            assert.equal(await application.stop(), 0);
            assert.ok(left() > 0, "it quits in the middle");
        } finally {
            application.process.kill("SIGKILL");
            leaveExpired(0);
        }
    });

    for (const signal of ["SIGTERM", "SIGINT", "SIGHUP"]) {
        it(`quits as from its menu on ${signal}`, async () => {
            const application = await Application.start(desktop);
            assert.equal(await application.stop(signal), 0);
            assert.ok(!existsSync(endpointFile(desktop.home)));
        });
    }
});

/// Fills a terminal with words, which take long to be read.
async function denseWindow() {
    const window = await desktop.openWindow({ className: "DenseTerm", size: [1250, 750], position: [0, 0] });
    const words = "the quick brown fox jumps over the lazy dog while seven wizards box with 0123456789 quaint gnomes ";
    for (let line = 0; line < 60; line++) {
        window.show(words.slice(line % 20).repeat(2).slice(0, 170) + "\\n");
    }
    await desktop.settled(window.id);
    return window;
}

/// Readings of the whole screen, and how many of them have come to their end.
function readScreen(request, count) {
    const readings = { done: 0 };
    readings.all = Array.from({ length: count }, (_, id) => request({ jsonrpc: "2.0", id, method: "tools/call", params: {
        name: "capture_region", arguments: { x: 0, y: 0, width: 1280, height: 800, ocr: true } } })
        .then(() => { readings.done++; }, () => {}));
    return readings;
}

describe("the application when it is asked to quit while tools run", () => {
    it("finishes the recording and leaves within two seconds, and the next copy runs at once", async () => {
        rmSync(sessionsFolder(desktop), { recursive: true, force: true });
        const window = await denseWindow();
        const first = await Application.start(desktop);
        const { body } = await first.post({ jsonrpc: "2.0", id: "r", method: "tools/call", params: {
            name: "start_recording", arguments: { app_name: "DenseTerm" } } });
        assert.match(JSON.parse(body).result.content[0].text, /^Recording started for DenseTerm\./);
        const readings = readScreen((message) => first.post(message), 8);
        await until("tools run", () => first.stderr.includes("orvane: recording started"));
        await pause(300);
        const begin = Date.now();
        const closed = first.stop();
        await until("the address is gone", () => !existsSync(endpointFile(desktop.home)), 2);
        await withApplication(desktop, async (second) => {
            assert.equal(await closed, 0);
            assert.ok(Date.now() - begin < 2500, `it took ${Date.now() - begin} ms`);
            assert.ok(readings.done < 8, "all tools had ended before");
            assert.equal(second.endpoint.pid, second.process.pid);
            assert.equal(JSON.parse((await second.post({ id: 1, method: "ping" })).body).id, 1);
            assert.doesNotMatch(second.stderr, /hotkey|conflict/i);
        });
        await Promise.all(readings.all);
        const report = new Recording(desktop, null, sessionIds(desktop)[0]).report();
        assert.match(report, /\| recording_end \| Recording stopped/);
        await window.close();
    });

    it("is started again by a tool server that comes at that moment", async () => {
        const window = await denseWindow();
        const first = await Application.start(desktop);
        const readings = readScreen((message) => first.post(message), 8);
        await pause(300);
        const closed = first.stop();
        await until("the address is gone", () => !existsSync(endpointFile(desktop.home)), 2);
        await withProcess(desktop.applicationEnv, async (server) => {
            await server.assertAlive();
            assert.match(server.stderr, /orvane: proxying MCP to /);
            assert.equal(await closed, 0);
            assert.notEqual(first.process.pid, endpoint(desktop.home).pid);
        });
        await Promise.all(readings.all);
        for (const pid of applications(desktop.home)) {
            await endApplication(pid);
        }
        await window.close();
    });

    it("is no different for a tool server that serves alone", async () => {
        rmSync(sessionsFolder(desktop), { recursive: true, force: true });
        const window = await denseWindow();
        const server = new RawProcess(desktop.env);
        await Recording.start(desktop, server, "DenseTerm");
        for (let id = 0; id < 4; id++) {
            server.send({ jsonrpc: "2.0", id, method: "tools/call", params: {
                name: "capture_region", arguments: { x: 0, y: 0, width: 1280, height: 800, ocr: true } } });
        }
        await pause(300);
        const begin = Date.now();
        server.process.kill("SIGTERM");
        assert.equal(await server.closed, 0);
        assert.ok(Date.now() - begin < 2500, `it took ${Date.now() - begin} ms`);
        const report = new Recording(desktop, null, sessionIds(desktop)[0]).report();
        assert.match(report, /\| recording_end \| Recording stopped/);
        await window.close();
    });
});

describe("a second copy of the application", () => {
    const answer = (...command) => {
        try {
            return desktop.run("xdotool", ...command).toString().trim();
        } catch {
            return "";
        }
    };
    /// The window of that process, and not the first copy's pin button.
    const alertOf = ({ process: { pid } }) => answer("search", "--onlyvisible", "--name", "^Orvane$").split("\n")
        .find((id) => answer("getwindowpid", id) === String(pid));

    it("shows an alert and leaves", () => withApplication(desktop, async (first) => {
        const second = new Application(desktop);
        const id = await until("the alert shows", () => alertOf(second));
        await until("the alert has the keyboard", () => answer("getactivewindow") === id);
        assert.ok(!second.ended);
        desktop.run("xdotool", "key", "Return");
        assert.equal(await second.closed, 0);
        assert.equal(JSON.parse((await first.post({ id: 1, method: "ping" })).body).id, 1);
        assert.equal(first.endpoint.pid, first.process.pid);
    }));

    it("takes over at once from one that was killed", async () => {
        const first = await Application.start(desktop);
        const { token } = first.endpoint;
        assert.equal(await first.stop("SIGKILL"), "SIGKILL");
        assert.ok(existsSync(endpointFile(desktop.home)), "a crash leaves the file");
        await withApplication(desktop, async (second) => {
            assert.equal(second.endpoint.pid, second.process.pid);
            assert.equal(second.endpoint.token, token);
        });
    });
});

describe("the human's recording", () => {
    const press = () => desktop.run("xdotool", "key", "super+ctrl+r");
    /// How many windows of that name are on the screen.
    const pins = (name) => {
        try {
            return desktop.run("xdotool", "search", "--onlyvisible", "--name", `^${name}$`).toString().trim().split("\n").length;
        } catch {
            return 0;
        }
    };

    it("starts and stops with the hotkey, and leaves its place on the clipboard", () =>
        withApplication(desktop, async (application) => {
            rmSync(sessionsFolder(desktop), { recursive: true, force: true });
            press();
            await until("it records", () =>
                application.stderr.includes("orvane: human recording started for Full Screen\n"));
            const [id] = sessionIds(desktop);
            await until("the pin tells of it", () => pins("Orvane \\(Recording\\)") === 1);
            await pause(300);
            press();
            await until("it has stopped", () =>
                application.stderr.includes(`orvane: human recording stopped (session ${id})\n`));
            const folder = `~/.orvane/sessions/${id}`;
            await until("the clipboard has the text", () => {
                try {
                    return desktop.run("xclip", "-selection", "clipboard", "-o").toString() ===
                        `[Orvane] Recording of Full Screen\nSession: ${id}\nTimeline: ${folder}/SESSION.md\n` +
                        `Start frame: ${folder}/frame-000-start.png\n`;
                } catch {
                    return false;
                }
            });
            await until("the pin tells of that", () => pins("Orvane \\(Recording\\)") === 0);
            const report = new Recording(desktop, null, id).report();
            assert.match(report, /^- \*\*Source:\*\* human$/m);
        }));

    it("is over when an agent has stopped it, and another one can begin", () =>
        withApplication(desktop, async (application) => {
            const started = () => application.stderr.split("orvane: human recording started for Full Screen\n").length - 1;
            press();
            await until("it records", () => started() === 1);
            const { body } = await application.post({ jsonrpc: "2.0", id: 1, method: "tools/call", params: {
                name: "stop_recording", arguments: {} } });
            assert.match(JSON.parse(body).result.content[0].text, /^Recording stopped\./);
            press();
            await until("the application is told", () => application.stderr.includes(
                "orvane: stop recording failed: Invalid arguments: Not recording.\n"));
            // The answer reaches the main thread a moment later, and a press before it would be another stop.
            await until("another one begins", async () => {
                press();
                await pause(300);
                return started() === 2;
            });
        }));

    it("tells the human where it cannot begin", async () => {
        const waylands = await startDesktop("--size", "1280x800");
        try {
            waylands.settings({ SaveRawVideo: false, HasOnboarded: true });
            // By this name an X server knows that a Wayland compositor has the screen.
            waylands.run("xprop", "-root", "-f", "WL_SURFACE_ID", "8s", "-set", "WL_SURFACE_ID", "");
            await withApplication(waylands, async (application) => {
                waylands.run("xdotool", "key", "super+ctrl+r");
                await until("it has failed", () =>
                    application.stderr.includes("orvane: recording failed: A Wayland session shows "));
                await until("a toast says so", () =>
                    waylands.run("xwininfo", "-root", "-children").includes('"Nothing was recorded — Orvane"'));
            });
        } finally {
            await waylands.stop();
        }
    });

    it("is not the only one that is finished when the application quits", async () => {
        rmSync(sessionsFolder(desktop), { recursive: true, force: true });
        const application = await Application.start(desktop);
        const window = await desktop.openWindow({ className: "AgentTerm" });
        const { body } = await application.post({ jsonrpc: "2.0", id: 1, method: "tools/call", params: {
            name: "start_recording", arguments: { app_name: "AgentTerm" } } });
        assert.match(JSON.parse(body).result.content[0].text, /^Recording started for AgentTerm\./);
        assert.equal(await application.stop(), 0);
        const report = new Recording(desktop, null, sessionIds(desktop)[0]).report();
        assert.match(report, /^- \*\*Source:\*\* mcp$/m);
        assert.match(report, /\| recording_end \| Recording stopped/);
        await window.close();
    });

    it("is finished when the application quits", async () => {
        rmSync(sessionsFolder(desktop), { recursive: true, force: true });
        const application = await Application.start(desktop);
        press();
        await until("it records", () => application.stderr.includes("orvane: human recording started"));
        assert.equal(await application.stop(), 0);
        const [id] = sessionIds(desktop);
        assert.match(new Recording(desktop, null, id).report(), /\| recording_end \| Recording stopped/);
    });
});
