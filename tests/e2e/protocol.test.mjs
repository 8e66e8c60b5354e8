// The tool server's standard streams, line by line: what comes back for good, bad and hostile input.
import assert from "node:assert/strict";
import { spawn, spawnSync } from "node:child_process";
import { once } from "node:events";
import { existsSync, mkdirSync, readFileSync, statSync, utimesSync, writeFileSync } from "node:fs";
import { join } from "node:path";
import { after, before, describe, it } from "node:test";
import { bareHome, until } from "./lib/desktop.mjs";
import { EXECUTABLE, RawProcess, withProcess } from "./lib/orvane.mjs";

const MIB = 1024 * 1024;
let place;
before(() => { place = bareHome(); });
after(() => place.remove());

/// Sends one line to a new process, checks the reply's id and error code, and that the process goes on.
async function assertRefused(line, code, message) {
    await withProcess(place.env, async (server) => {
        const reply = await server.request(line, 60);
        assert.equal(reply.id, null);
        assert.equal(reply.error?.code, code);
        assert.match(reply.error.message, message ?? /./);
        await server.assertAlive();
    });
}

describe("other arguments", () => {
    it("mean nothing to the tool server, whatever they mean to Qt", () =>
        withProcess(place.env, (server) => server.assertAlive(),
                    { args: ["-platform", "nonsense", "--mcp", "-qwindowgeometry", "-reverse"] }));

    it("of the environment do not choose the platform either", () =>
        withProcess({ ...place.env, QT_QPA_PLATFORM: "nonsense" }, (server) => server.assertAlive()));
});

describe("replies byte for byte", () => {
    const expected = [
        ['{"jsonrpc":"2.0","id":1,"method":"ping"}', '{"id":1,"jsonrpc":"2.0","result":{}}'],
        ['  {"method":"ping","id":"a"}  \r', '{"id":"a","jsonrpc":"2.0","result":{}}'],
        ['{"method":"ping"}', '{"id":null,"jsonrpc":"2.0","result":{}}'],
        ['{"id":{"b":[1,null],"a":true},"method":"ping"}', '{"id":{"a":true,"b":[1,null]},"jsonrpc":"2.0","result":{}}'],
        ['{"id":9007199254740991,"method":"ping"}', '{"id":9007199254740991,"jsonrpc":"2.0","result":{}}'],
        ['{"id":9223372036854775807,"method":"ping"}', '{"id":9223372036854775807,"jsonrpc":"2.0","result":{}}'],
        ...["12345678901234567890123", "-9223372036854775809", "1.0", "1e3", "-0", "1E400"].map((id) =>
            [`{"id":${id},"method":"ping"}`, `{"id":${id},"jsonrpc":"2.0","result":{}}`]),
        ['{"id":-1.5,"method":"ping","params":[1]}', '{"id":-1.5,"jsonrpc":"2.0","result":{}}'],
        ['{"id":"窓 \\ud83e\\ude9f","method":"ping"}', '{"id":"窓 🪟","jsonrpc":"2.0","result":{}}'],
        ["[1,2]", '{"error":{"code":-32600,"message":"Invalid request"},"id":null,"jsonrpc":"2.0"}'],
        ['{"id":7}', '{"error":{"code":-32600,"message":"Invalid request"},"id":null,"jsonrpc":"2.0"}'],
        ['{"id":7,"method":5}', '{"error":{"code":-32600,"message":"Invalid request"},"id":null,"jsonrpc":"2.0"}'],
        ['{"id":"x","method":"nope"}',
         '{"error":{"code":-32601,"message":"Method not found: nope"},"id":"x","jsonrpc":"2.0"}'],
        ['{"id":1,"method":"Ping"}',
         '{"error":{"code":-32601,"message":"Method not found: Ping"},"id":1,"jsonrpc":"2.0"}'],
        ['{"method":"notifications/cancelled"}',
         '{"error":{"code":-32601,"message":"Method not found: notifications/cancelled"},"id":null,"jsonrpc":"2.0"}'],
        ['{"id":2,"method":"tools/call","params":{}}',
         '{"id":2,"jsonrpc":"2.0","result":{"content":[{"text":"Error: Unknown tool: ","type":"text"}],"isError":true}}'],
        ['{"id":3,"method":"tools/call","params":{"name":"Ünknown\\n","arguments":7}}',
         '{"id":3,"jsonrpc":"2.0","result":{"content":[{"text":"Error: Unknown tool: Ünknown\\n","type":"text"}],"isError":true}}'],
        ['{"id":4,"method":"tools/call","params":{"name":["list_windows"]}}',
         '{"id":4,"jsonrpc":"2.0","result":{"content":[{"text":"Error: Unknown tool: ","type":"text"}],"isError":true}}'],
    ];
    for (const [line, reply] of expected) {
        it(line.trim(), () => withProcess(place.env, async (server) => {
            server.send(line);
            assert.equal((await server.line()).toString(), reply);
        }));
    }

    it("initialize", () => withProcess(place.env, async (server) => {
        server.send('{"id":1,"method":"initialize","params":{"protocolVersion":"1999-01-01"}}');
        const line = (await server.line()).toString();
        assert.ok(line.startsWith('{"id":1,"jsonrpc":"2.0","result":{"capabilities":{"tools":{"listChanged":false}},' +
                                  '"instructions":"Orvane lets an AI agent see the screen and draw on it.\\n\\nCOORDINATES.'),
                  line);
        assert.ok(line.endsWith('Recording tools produce artifacts to read later.","protocolVersion":"2024-11-05",' +
                                '"serverInfo":{"name":"orvane","version":"0.1.0"}}}'), line);
    }));
});

describe("lines without a reply", () => {
    it("an empty line and the notification that the client is ready", () => withProcess(place.env, async (server) => {
        server.write("\n\n\n");
        server.send({ jsonrpc: "2.0", method: "notifications/initialized" });
        server.send({ jsonrpc: "2.0", id: 5, method: "notifications/initialized" });
        await server.assertAlive();
    }));
});

describe("hostile lines", () => {
    const PARSE_FAILURE = -32603;
    const bad = {
        "no JSON": "not json",
        "one blank": " ",
        "a broken object": '{"id":1,"method":"ping"',
        "two values": '{"id":1,"method":"ping"} {"id":2,"method":"ping"}',
        "a NUL byte": Buffer.from('{"id":1,\0"method":"ping"}'),
        "only a NUL byte": Buffer.from([0]),
        "a byte order other than UTF-8": Buffer.from("\ufeff{}", "utf16le"),
        "random bytes": Buffer.from(Array.from({ length: 4096 }, (_, i) => (i * 7919 + 13) % 256).filter((b) => b !== 10)),
        "a line of brackets, 100,000 deep": "[".repeat(100000),
        "closed brackets, 100,000 deep": "[".repeat(100000) + "]".repeat(100000),
        "objects, 100,000 deep": '{"a":'.repeat(100000) + "1" + "}".repeat(100000),
        "a number that never ends": "1".repeat(1 << 20) + "x",
    };
    for (const [name, line] of Object.entries(bad)) {
        it(name, () => assertRefused(line, PARSE_FAILURE));
    }

    it("bytes that are no UTF-8 never reach a reply", () => withProcess(place.env, async (server) => {
        for (const bytes of [[0xff], [0xc0, 0x80], [0xed, 0xa0, 0x80], [0xf8, 0x88, 0x80, 0x80, 0x80], [0xe7, 0xaa]]) {
            const line = Buffer.concat([Buffer.from('{"id":1,"method":"no'), Buffer.from(bytes), Buffer.from('"}')]);
            const reply = await server.request(line);
            assert.ok([-32603, -32601].includes(reply.error.code), JSON.stringify(reply));
        }
        await server.assertAlive();
    }));

    it("200 levels of arguments are no trouble", () => withProcess(place.env, async (server) => {
        const deep = "[".repeat(200) + "]".repeat(200);
        const reply = await server.request(`{"id":1,"method":"ping","params":{"deep":${deep}}}`);
        assert.deepEqual(reply, { id: 1, jsonrpc: "2.0", result: {} });
    }));

    it("a good line of 64 MiB", { timeout: 120000 }, () => withProcess(place.env, async (server) => {
        const line = Buffer.alloc(64 * MIB, "x");
        const start = '{"id":64,"method":"ping","params":{"pad":"';
        line.write(start);
        line.write('"}}', line.length - 3);
        const reply = await server.request(line, 90);
        assert.deepEqual(reply, { id: 64, jsonrpc: "2.0", result: {} });
        await server.assertAlive();
    }));

    it("a bad line of 64 MiB", { timeout: 120000 }, () => assertRefused(Buffer.alloc(64 * MIB, "x"), PARSE_FAILURE));

    it("one line that comes byte by byte", () => withProcess(place.env, async (server) => {
        for (const character of '{"id":1,"method":"ping"}\n') {
            server.write(character);
            await new Promise(setImmediate);
        }
        assert.deepEqual(await server.reply(), { id: 1, jsonrpc: "2.0", result: {} });
    }));

    it("many lines that come at once are answered in order", () => withProcess(place.env, async (server) => {
        const ids = Array.from({ length: 2000 }, (_, index) => index);
        server.write(ids.map((id) => `{"id":${id},"method":"${id % 3 ? "ping" : "tools/list"}"}\n`).join(""));
        for (const id of ids) {
            assert.equal((await server.reply()).id, id);
        }
    }));
});

describe("the end of input", () => {
    it("answers what came before, then leaves with status 0", () => withProcess(place.env, async (server) => {
        server.write('{"id":1,"method":"ping"}\n{"id":2,"method":"tools/list"}\n{"id":3,"method":"ping"}\n');
        server.process.stdin.end();
        assert.equal((await server.reply()).id, 1);
        assert.equal((await server.reply()).result.tools.length, 14);
        assert.equal((await server.reply()).id, 3);
    }));

    it("comes at once with /dev/null", () => {
        const { status, stdout } = spawnSync(EXECUTABLE, ["--mcp"], { env: place.env, input: "", timeout: 20000 });
        assert.equal(status, 0);
        assert.equal(stdout.length, 0);
    });

    it("works with files and pipes of a shell as well", () => {
        const input = join(place.home, "requests");
        writeFileSync(input, '{"id":1,"method":"ping"}\n{"id":2,"method":"ping"}\n');
        const expected = '{"id":1,"jsonrpc":"2.0","result":{}}\n{"id":2,"jsonrpc":"2.0","result":{}}\n';
        for (const script of ['"$0" --mcp < "$1"', 'cat "$1" | "$0" --mcp | cat', '"$0" --mcp < "$1" > "$1.out"; cat "$1.out"']) {
            const { status, stdout } = spawnSync("sh", ["-c", script, EXECUTABLE, input], { env: place.env, timeout: 20000 });
            assert.equal(status, 0, script);
            assert.equal(stdout.toString(), expected, script);
        }
    });

    it("does not hang when nobody reads the replies any more", async () => {
        const server = new RawProcess(place.env);
        await server.assertAlive();
        server.process.stdout.destroy();
        for (let id = 0; id < 50; id++) {
            server.send({ id, method: "tools/list" });
        }
        server.process.stdin.end();
        const gone = once(server.process, "exit");
        const timer = setTimeout(() => server.process.kill("SIGKILL"), 20000);
        const [, signal] = await gone;
        clearTimeout(timer);
        assert.notEqual(signal, "SIGKILL", "the process had to be killed");
    });
});

describe("the choice of the face", () => {
    for (const args of [["--mcp"], ["foo", "--mcp", "bar"], ["--help", "--mcp"], ["--mcp", "--mcp"]]) {
        it(`"${args.join(" ")}" serves tools`, () => withProcess(place.env, async (server) => {
            await server.assertAlive();
            await until("it says so", () => server.stderr.startsWith("orvane: starting MCP (smart launcher)\n"));
        }, { args }));
    }

    for (const args of [["--mcp=1"], ["--MCP"], ["-mcp"], ["mcp"], [" --mcp"]]) {
        it(`"${args.join(" ")}" does not, and fails with one line where there is no display`, () => {
            const { status, stdout, stderr } = spawnSync(EXECUTABLE, args, {
                env: place.env, input: '{"id":1,"method":"ping"}\n', timeout: 20000 });
            assert.equal(status, 1);
            assert.equal(stdout.toString(), "");
            assert.match(stderr.toString(), /^orvane: .+\n$/);
            assert.doesNotMatch(stderr.toString(), /starting MCP/);
        });
    }

    it("two tool servers live side by side and leave the application's lock alone", async () => {
        const folder = join(place.home, ".orvane");
        mkdirSync(folder, { recursive: true });
        const lock = join(folder, ".gui.lock");
        assert.ok(!existsSync(lock));
        const twice = () => withProcess(place.env, (one) => withProcess(place.env, async (other) => {
            for (const server of [one, other, one]) {
                await server.assertAlive();
                await server.callTool("list_windows", {});
            }
        }));
        await twice();
        assert.ok(!existsSync(lock));

        writeFileSync(lock, "as it was");
        utimesSync(lock, 1000, 1000);
        const holder = spawn("flock", ["-x", lock, "sh", "-c", "echo held; cat"], { stdio: ["pipe", "pipe", "inherit"] });
        await once(holder.stdout, "data");
        await twice();
        holder.stdin.end();
        await once(holder, "exit");
        assert.equal(readFileSync(lock, "utf8"), "as it was");
        assert.equal(statSync(lock).mtimeMs, 1000000);
    });
});
