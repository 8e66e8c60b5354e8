// The program under test, as a real MCP client sees it and as bare lines.
import assert from "node:assert/strict";
import { spawn } from "node:child_process";
import { once } from "node:events";
import { existsSync } from "node:fs";
import { fileURLToPath } from "node:url";
import { Client } from "@modelcontextprotocol/sdk/client/index.js";
import { StdioClientTransport } from "@modelcontextprotocol/sdk/client/stdio.js";
import { decodePng } from "./png.mjs";

export const EXECUTABLE = process.env.ORVANE_EXECUTABLE ??
    fileURLToPath(new URL("../../../build/release/bin/orvane", import.meta.url));
assert.ok(existsSync(EXECUTABLE), `${EXECUTABLE} has not been built`);

/// What an agent reads for an error that is thrown, by case number.
export const thrown = (number) => `Error: The operation could not be completed. (OrvaneError error ${number}.)`;
export const INVALID_ARGUMENTS = thrown(1);
export const PERMISSION_DENIED = thrown(4);

/// A client of the public SDK that is connected to a new process. Call client.close() in the end.
export async function connect(env) {
    const transport = new StdioClientTransport({ command: EXECUTABLE, args: ["--mcp"], env, stderr: "ignore" });
    const client = new Client({ name: "orvane-e2e", version: "1.0.0" });
    await client.connect(transport);
    return client;
}

/// Calls a tool and checks everything that holds for every tool result. Gives { error, text, images, items }, where
/// images are decoded pictures, text is that of the first item, and items are all texts and pictures in their order.
export async function call(client, name, args = {}) {
    return readResult(await client.callTool({ name, arguments: args }), name);
}

export function readResult(result, name = "tool") {
    assert.ok(Array.isArray(result.content) && result.content.length > 0, `${name} gives no content`);
    for (const key of Object.keys(result)) {
        assert.ok(key === "content" || key === "isError", `${name} gives the key ${key}`);
    }
    const items = [];
    for (const item of result.content) {
        if (item.type === "text") {
            assert.deepEqual(Object.keys(item).sort(), ["text", "type"]);
            items.push(item.text);
        } else {
            assert.deepEqual(Object.keys(item).sort(), ["data", "mimeType", "type"]);
            assert.equal(item.type, "image");
            assert.equal(item.mimeType, "image/png");
            assert.match(item.data, /^[A-Za-z0-9+/]+={0,2}$/);
            items.push(decodePng(Buffer.from(item.data, "base64")));
        }
    }
    const images = items.filter((item) => typeof item !== "string");
    const [{ type, text }] = result.content;
    assert.equal(type, "text", `${name}: the text comes first`);
    const error = "isError" in result;
    if (error) {
        assert.equal(result.isError, true);
        assert.equal(result.content.length, 1);
        assert.match(text, /^Error: ./);
    }
    const stated = text.match(/Returned image: (\d+)×(\d+) px/);
    if (stated) {
        assert.deepEqual([images[0].width, images[0].height], [Number(stated[1]), Number(stated[2])],
                         `${name}: the stated size`);
    }
    return { error, text, images, items };
}

/// A process of the program whose standard input and output are in the test's own hands.
export class RawProcess {
    constructor(env, { args = ["--mcp"], command = EXECUTABLE } = {}) {
        this.process = spawn(command, args, { env, stdio: ["pipe", "pipe", "pipe"] });
        this.process.stdin.on("error", () => {});
        this.stderr = "";
        this.process.stderr.setEncoding("utf8").on("data", (block) => { this.stderr += block; });
        this.blocks = [];
        this.lines = [];
        this.waiting = [];
        this.process.stdout.on("data", (block) => this.#take(block));
        this.closed = once(this.process, "close").then(([code, signal]) => {
            this.finished = true;
            this.waiting.splice(0).forEach(({ reject }) => reject(new Error("the process has ended")));
            return signal ?? code;
        });
    }

    #take(block) {
        for (;;) {
            const end = block.indexOf(10);
            if (end < 0) {
                this.blocks.push(block);
                return;
            }
            const line = Buffer.concat([...this.blocks, block.subarray(0, end)]);
            this.blocks = [];
            block = block.subarray(end + 1);
            const reader = this.waiting.shift();
            reader ? reader.resolve(line) : this.lines.push(line);
        }
    }

    /// Sends bytes or a text as they are.
    write(data) {
        this.process.stdin.write(data);
    }

    /// Sends one line; an object goes out as JSON.
    send(message) {
        this.write(Buffer.isBuffer(message) ? message : typeof message === "string" ? message : JSON.stringify(message));
        this.write("\n");
    }

    /// The bytes of the next line of standard output, without its newline.
    async line(seconds = 20) {
        if (this.lines.length > 0) {
            return this.lines.shift();
        }
        assert.ok(!this.finished, "the process has ended");
        let timer;
        try {
            return await new Promise((resolve, reject) => {
                this.waiting.push({ resolve, reject });
                timer = setTimeout(() => reject(new Error(`no line in ${seconds} s; stderr: ${this.stderr}`)),
                                   seconds * 1000);
            });
        } finally {
            clearTimeout(timer);
        }
    }

    /// The next reply, after checking that it has the three keys of a reply and nothing else.
    async reply(seconds) {
        const line = await this.line(seconds);
        const text = new TextDecoder("utf-8", { fatal: true }).decode(line);
        const reply = JSON.parse(text);
        const outcome = "error" in reply ? "error" : "result";
        assert.deepEqual(Object.keys(reply), [outcome, "id", "jsonrpc"].sort(), text.slice(0, 200));
        assert.equal(reply.jsonrpc, "2.0");
        if (outcome === "error") {
            assert.deepEqual(Object.keys(reply.error), ["code", "message"]);
            assert.equal(typeof reply.error.message, "string");
        }
        return reply;
    }

    async request(message, seconds) {
        this.send(message);
        return this.reply(seconds);
    }

    async callTool(name, args, seconds) {
        const reply = await this.request({ jsonrpc: "2.0", id: 1, method: "tools/call",
                                           params: { name, arguments: args } }, seconds);
        return readResult(reply.result, name);
    }

    /// Checks that the process still answers, and in order.
    async assertAlive() {
        const reply = await this.request({ jsonrpc: "2.0", id: "still there", method: "ping" });
        assert.deepEqual(reply, { id: "still there", jsonrpc: "2.0", result: {} });
    }

    /// Checks what it has said so far on standard error, which may come later than what it says on standard output.
    async assertSaid(expected, what) {
        const deadline = Date.now() + 5000;
        while (this.stderr.length < expected.length && Date.now() < deadline) {
            await new Promise((resolve) => setTimeout(resolve, 10));
        }
        assert.equal(this.stderr, expected, what);
    }

    /// Closes standard input and gives the exit status, after checking that nothing else came out.
    async end(seconds = 20) {
        this.process.stdin.end();
        let timer;
        const late = new Promise((resolve) => { timer = setTimeout(resolve, seconds * 1000, "does not end"); });
        const status = await Promise.race([this.closed, late]);
        clearTimeout(timer);
        if (status === "does not end") {
            this.process.kill("SIGKILL");
        }
        assert.deepEqual(this.lines.map(String), [], "lines nobody asked for");
        assert.equal(Buffer.concat(this.blocks).toString(), "", "a line without an end");
        return status;
    }
}

/// Runs `body` with a process and ends that process whatever happens; it has to leave with status 0.
export async function withProcess(env, body, options) {
    const server = new RawProcess(env, options);
    try {
        await body(server);
        assert.equal(await server.end(), 0);
    } finally {
        if (!server.finished) {
            server.process.kill("SIGKILL");
        }
    }
}
