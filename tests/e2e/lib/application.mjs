// The tray application as a process of a test, and what others see of it.
import assert from "node:assert/strict";
import { spawn } from "node:child_process";
import { once } from "node:events";
import { existsSync, readFileSync, readdirSync } from "node:fs";
import { request } from "node:http";
import { createServer } from "node:net";
import { join } from "node:path";
import { EXECUTABLE } from "./orvane.mjs";
import { until } from "./desktop.mjs";

/// Applications of all desktops share the ports of this machine, and some tests take all of them: the test files that
/// start applications run one after the other. A name in Linux's abstract namespace goes with the process that has it.
async function waitForTheOthers() {
    for (;;) {
        const place = createServer().unref();
        place.listen("\0orvane-e2e-applications");
        try {
            await once(place, "listening");
            return;
        } catch (error) {
            assert.equal(error.code, "EADDRINUSE");
        }
        await new Promise((resolve) => setTimeout(resolve, 100));
    }
}

await waitForTheOthers();

export const endpointFile = (home) => join(home, ".orvane/mcp-endpoint.json");

/// What the endpoint file says, or nothing.
export function endpoint(home) {
    return existsSync(endpointFile(home)) ? JSON.parse(readFileSync(endpointFile(home), "utf8")) : null;
}

/// One HTTP exchange: { status, headers, body }.
export function http(url, { method = "GET", headers = {}, body } = {}) {
    return new Promise((resolve, reject) => {
        const exchange = request(url, { method, headers, agent: false }, (response) => {
            const blocks = [];
            response.on("data", (block) => blocks.push(block));
            response.on("end", () => resolve({ status: response.statusCode, headers: response.headers,
                                               body: Buffer.concat(blocks).toString() }));
            response.on("error", reject);
        });
        exchange.on("error", reject);
        exchange.end(body);
    });
}

/// Whether a process is there.
export function lives(pid) {
    try {
        process.kill(pid, 0);
        return true;
    } catch {
        return false;
    }
}

/// The applications that run with that home folder.
export function applications(home) {
    return readdirSync("/proc").filter((name) => /^\d+$/.test(name)).map(Number).filter((pid) => {
        try {
            const [command, ...rest] = readFileSync(`/proc/${pid}/cmdline`, "utf8").split("\0");
            return command === EXECUTABLE && rest.join("") === "" &&
                readFileSync(`/proc/${pid}/environ`, "utf8").split("\0").includes(`HOME=${home}`);
        } catch {
            return false;
        }
    });
}

/// Ends an application that was started by somebody else.
export async function endApplication(pid) {
    process.kill(pid, "SIGTERM");
    await until("the application has ended", () => !lives(pid));
}

export class Application {
    /// Starts it on a desktop and waits until it hosts the tools.
    static async start(desktop, env = desktop.applicationEnv) {
        const application = new Application(desktop, env);
        try {
            await until("the application hosts the tools", () => {
                assert.ok(!application.ended, `it has ended: ${application.stderr}`);
                return /orvane: MCP HTTP host on \S+\n/.test(application.stderr);
            });
        } catch (error) {
            application.process.kill("SIGKILL");
            throw new Error(`${error.message}; it says: ${application.stderr}`);
        }
        return application;
    }

    /// `through`: a command that runs the program that follows it.
    constructor(desktop, env = desktop.applicationEnv, through = []) {
        this.home = desktop.home;
        const [command, ...args] = [...through, EXECUTABLE];
        this.process = spawn(command, args, { env, stdio: ["ignore", "pipe", "pipe"] });
        this.stderr = "";
        this.stdout = "";
        this.process.stderr.setEncoding("utf8").on("data", (block) => { this.stderr += block; });
        this.process.stdout.setEncoding("utf8").on("data", (block) => { this.stdout += block; });
        this.closed = once(this.process, "close").then(([code, signal]) => {
            this.ended = true;
            return signal ?? code;
        });
    }

    get endpoint() {
        return endpoint(this.home);
    }

    get url() {
        return this.endpoint.url;
    }

    /// Posts one message as a client with the token does.
    post(message, headers = {}) {
        return http(this.url, {
            method: "POST",
            headers: { authorization: `Bearer ${this.endpoint.token}`, "content-type": "application/json", ...headers },
            body: typeof message === "string" ? message : JSON.stringify(message),
        });
    }

    /// Asks it to end, and gives its exit status.
    async stop(signal = "SIGTERM") {
        this.process.kill(signal);
        return this.closed;
    }
}

/// An application for the time of `body`; it has to leave with status 0 and nothing on standard output.
export async function withApplication(desktop, body) {
    const application = await Application.start(desktop);
    try {
        await body(application);
        assert.equal(await application.stop(), 0);
        assert.equal(application.stdout, "");
    } finally {
        if (!application.ended) {
            application.process.kill("SIGKILL");
            await application.closed;
        }
    }
}
