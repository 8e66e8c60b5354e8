// `orvane --mcp` as a pipe to the application: where it runs, where it has to be started first, where it is not to be
// had, and where it goes in the middle.
import assert from "node:assert/strict";
import { spawn } from "node:child_process";
import { once } from "node:events";
import { createServer } from "node:http";
import { mkdirSync, rmSync, writeFileSync } from "node:fs";
import { join } from "node:path";
import { after, afterEach, before, describe, it } from "node:test";
import { Application, applications, endApplication, endpoint, endpointFile, lives, withApplication } from "./lib/application.mjs";
import { startDesktop, until } from "./lib/desktop.mjs";
import { RawProcess, connect, call, withProcess } from "./lib/orvane.mjs";
import { withWindow } from "./lib/recording.mjs";
import { Stranger } from "./lib/stranger.mjs";

const STARTING = "orvane: starting MCP (smart launcher)\n";
const LAUNCHING = "orvane: launching app for shared-state MCP…\n";
const ALONE = "orvane: app host unavailable — serving MCP in-process\n";
const LOST = "orvane: host unreachable — falling back in-process\n";
const proxying = (url) => `orvane: proxying MCP to ${url}\n`;

let desktop;
before(async () => {
    desktop = await startDesktop("--size", "1280x800");
    desktop.settings({ SaveRawVideo: false, HasOnboarded: true });
});
after(() => desktop?.stop());

/// What a launcher of the test before has started. A file may name a process that is none of ours.
afterEach(async () => {
    for (const pid of applications(desktop.home)) {
        await endApplication(pid);
    }
    rmSync(endpointFile(desktop.home), { force: true });
});

describe("a tool server beside the running application", () => {
    it("passes messages on and writes nothing of its own", () => withApplication(desktop, async (application) => {
        await withProcess(desktop.env, async (server) => {
            const { result } = await server.request({ jsonrpc: "2.0", id: 1, method: "initialize", params: {} });
            assert.equal(result.serverInfo.name, "orvane");
            server.send({ jsonrpc: "2.0", method: "notifications/initialized" });
            server.send("");
            await server.assertAlive();
            const long = '{"id":12345678901234567890123.0,"jsonrpc":"2.0","result":{}}';
            server.send('{"id":12345678901234567890123.0,"method":"ping"}');
            assert.equal((await server.line()).toString(), long);
            const { error } = await server.request("not json");
            assert.equal(error.code, -32603);
            assert.equal((await server.callTool("list_windows", {})).error, false);
            await server.assertSaid(STARTING + proxying(application.url));
        });
    }));

    it("carries lines of megabytes both ways", () => withApplication(desktop, () =>
        withProcess(desktop.env, async (server) => {
            const id = "x".repeat(3 << 20);
            assert.equal((await server.request({ id, method: "ping" })).id, id);
        })));

    it("shares the application's state with nine others", () => withWindow(desktop, "SharedTerm", async () => {
        await withApplication(desktop, async () => {
            const clients = await Promise.all(Array.from({ length: 10 }, () => connect(desktop.env)));
            const answers = [];
            for (const client of clients) {
                answers.push(await call(client, "capture_diff", { app_name: "SharedTerm" }));
            }
            assert.deepEqual(answers.map(({ error, images }) => [error, images.length]),
                             answers.map((_, i) => [false, i % 2 === 0 ? 0 : 2]));
            await Promise.all(clients.map((client) => client.close()));
        });
    }));

    it("serves alone when the application quits", async () => {
        const application = await Application.start(desktop);
        const { url } = application;
        await withProcess(desktop.env, async (server) => {
            await server.assertAlive();
            assert.equal(await application.stop(), 0);
            server.send({ jsonrpc: "2.0", id: "lost", method: "ping" });
            await server.assertAlive();
            await server.callTool("list_windows", {});
            await server.assertSaid(STARTING + proxying(url) + LOST);
            await withApplication(desktop, () => server.assertAlive());
            await server.assertSaid(STARTING + proxying(url) + LOST, "there is no way back");
        });
    });

    it("loses and doubles no line of a flood when the application is killed in the middle", async () => {
        const application = await Application.start(desktop);
        await withProcess(desktop.env, async (server) => {
            const count = 400;
            for (let id = 0; id < count; id++) {
                server.send({ jsonrpc: "2.0", id, method: "ping" });
            }
            const ids = [];
            while (ids.at(-1) !== count - 1) {
                ids.push((await server.reply()).id);
                if (ids.length === 20) {
                    application.process.kill("SIGKILL");
                }
            }
            const missing = Array.from({ length: count }, (_, id) => id).filter((id) => !ids.includes(id));
            assert.ok(missing.length <= 1, `${missing} are missing`);
            assert.deepEqual(ids, [...new Set(ids)].sort((a, b) => a - b));
        });
        await application.closed;
    });
});

/// Makes an address with a token the one that clients find.
function writeEndpoint(port) {
    mkdirSync(join(desktop.home, ".orvane"), { recursive: true });
    writeFileSync(endpointFile(desktop.home), JSON.stringify({
        pid: process.pid, port, startedAt: "", token: "secret", url: `http://127.0.0.1:${port}/mcp`, version: "0.1.0" }));
}

describe("another user at the address that an application left behind", () => {
    it("is no host for a tool server that serves alone then", async () => {
        const stranger = await Stranger.listen();
        writeEndpoint(stranger.port);
        await withProcess(desktop.env, async (server) => {
            await server.assertAlive();
            await server.assertSaid(STARTING + LAUNCHING + ALONE);
        });
        await until("it was connected to", () => stranger.connections > 0);
        await stranger.stop();
    });

    it("is none for one that starts the application, which has another address then", async () => {
        const stranger = await Stranger.listen(47600);
        writeEndpoint(stranger.port);
        await withProcess(desktop.applicationEnv, async (server) => {
            await server.assertAlive();
            const { url, port } = endpoint(desktop.home);
            assert.notEqual(port, stranger.port);
            await server.assertSaid(STARTING + LAUNCHING + proxying(url));
        });
        await stranger.stop();
    });

    it("gets nothing of a pipe whose application was killed", async () => {
        const application = await Application.start(desktop);
        const { port, url } = application.endpoint;
        await withProcess(desktop.env, async (server) => {
            await server.assertAlive();
            await application.stop("SIGKILL");
            const stranger = await Stranger.listen(port);
            server.send({ jsonrpc: "2.0", id: "lost", method: "ping" });
            await server.assertAlive();
            await server.assertSaid(STARTING + proxying(url) + LOST);
            await until("it was connected to", () => stranger.connections > 0);
            await stranger.stop();
        });
    });

    it("is not to be told from any other program of our own by anything but the user", async () => {
        const heard = [];
        const host = createServer((request, response) => {
            heard.push([request.method, request.url, request.headers.authorization]);
            request.resume().on("end", () => response.end('{"id":"still there","jsonrpc":"2.0","result":{}}'));
        }).listen(0, "127.0.0.1");
        await once(host, "listening");
        writeEndpoint(host.address().port);
        await withProcess(desktop.env, async (server) => {
            await server.assertAlive();
            await server.assertSaid(STARTING + proxying(`http://127.0.0.1:${host.address().port}/mcp`));
        });
        assert.deepEqual(heard, [["GET", "/health", undefined], ["POST", "/mcp", "Bearer secret"]]);
        host.close();
    });
});

describe("a tool server without the application", () => {
    it("starts it and passes messages on", () => withProcess(desktop.applicationEnv, async (server) => {
        await server.assertAlive();
        const { pid, url } = endpoint(desktop.home);
        assert.notEqual(pid, server.process.pid);
        await server.assertSaid(STARTING + LAUNCHING + proxying(url));
    }));

    it("starts it also where it left its address behind", async () => {
        const application = await Application.start(desktop);
        const { pid } = application.endpoint;
        await application.stop("SIGKILL");
        await withProcess(desktop.applicationEnv, async (server) => {
            await server.assertAlive();
            await until("it starts it", () => server.stderr.startsWith(STARTING + LAUNCHING));
            assert.notEqual(endpoint(desktop.home).pid, pid);
        });
    });

    it("leaves it running", async () => {
        await withProcess(desktop.applicationEnv, (server) => server.assertAlive());
        assert.ok(lives(endpoint(desktop.home).pid));
    });

    it("starts one of it, however many come at once", async () => {
        const servers = Array.from({ length: 10 }, () => new RawProcess(desktop.applicationEnv));
        await Promise.all(servers.map((server) => server.assertAlive()));
        const { pid, url } = endpoint(desktop.home);
        for (const server of servers) {
            // One that comes late finds it running.
            await until("it is a pipe", () => server.stderr.replace(LAUNCHING, "") === STARTING + proxying(url));
        }
        assert.ok(servers.some((server) => server.stderr.includes(LAUNCHING)));
        await until("there is one application", () => applications(desktop.home).length === 1);
        assert.deepEqual(applications(desktop.home), [pid]);
        assert.deepEqual(await Promise.all(servers.map((server) => server.end())), servers.map(() => 0));
    });

    it("serves alone at once where it cannot be started", async () => {
        const { DISPLAY, ...env } = desktop.applicationEnv;
        assert.ok(DISPLAY);
        const begin = Date.now();
        await withProcess(env, async (server) => {
            await server.assertAlive();
            await server.assertSaid(STARTING + LAUNCHING + ALONE);
        });
        assert.ok(Date.now() - begin < 5000);
    });

    it("does not start it where the user does not want that", () => withProcess(desktop.env, async (server) => {
        await server.assertAlive();
        await server.assertSaid(STARTING + LAUNCHING + ALONE);
    }));

    it("waits for one that is being started, and then serves alone", async () => {
        const folder = join(desktop.home, ".orvane");
        mkdirSync(folder, { recursive: true });
        const holder = spawn("flock", ["-x", join(folder, ".gui.lock"), "sh", "-c", "echo held; cat"],
                             { stdio: ["pipe", "pipe", "inherit"] });
        await once(holder.stdout, "data");
        try {
            const [patient, gone] = [1, 2].map(() => new RawProcess(desktop.applicationEnv));
            const begin = Date.now();
            gone.process.stdin.end();
            await patient.assertAlive();
            assert.ok(Date.now() - begin > 9000, "it has waited");
            await patient.assertSaid(STARTING + LAUNCHING + ALONE);
            assert.equal(await patient.end(), 0);
            assert.equal(await gone.closed, 0);
            await gone.assertSaid(STARTING + LAUNCHING + ALONE);
        } finally {
            holder.stdin.end();
            await once(holder, "exit");
        }
    });

    it("takes an address that nobody can use for none", async () => {
        mkdirSync(join(desktop.home, ".orvane"), { recursive: true });
        for (const text of ["", "[]", '{"url": 5}', JSON.stringify({
            pid: process.pid, port: 1, startedAt: "", token: "", url: "http://127.0.0.1:1/mcp", version: "0.1.0" })]) {
            writeFileSync(endpointFile(desktop.home), text);
            await withProcess(desktop.env, async (server) => {
                await server.assertAlive();
                await server.assertSaid(STARTING + LAUNCHING + ALONE, text);
            });
        }
    });
});
