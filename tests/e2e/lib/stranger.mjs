// Another user of this machine, who listens on a port of the loopback interface.
import assert from "node:assert/strict";
import { spawn } from "node:child_process";
import { once } from "node:events";

/// Whoever owns nothing here.
const NOBODY = 65534;

/// Answers everything as a host would that is well, and tells what it hears.
const PROGRAM = `
const server = require("node:net").createServer((socket) => {
    process.stdout.write("connected\\n");
    socket.on("error", () => {}).on("data", (bytes) => process.stdout.write("heard " + bytes.toString("base64") + "\\n"));
    socket.write("HTTP/1.1 200 OK\\r\\nContent-Length: 2\\r\\n\\r\\n{}");
});
server.on("error", (error) => { console.error(error.message); process.exit(1); });
server.listen(Number(process.argv[1]), "127.0.0.1", () => process.stdout.write("port " + server.address().port + "\\n"));
process.stdin.on("data", () => {}).on("end", () => process.exit(0));
`;

/// Runs node as another user: root may be anybody, others ask sudo.
function spawnAsNobody(args) {
    const options = { cwd: "/", env: { PATH: process.env.PATH }, stdio: ["pipe", "pipe", "inherit"] };
    return process.getuid() === 0
        ? spawn(process.execPath, args, { ...options, uid: NOBODY, gid: NOBODY })
        : spawn("sudo", ["-n", "-u", `#${NOBODY}`, "--", process.execPath, ...args], options);
}

export class Stranger {
    /// Listens on that port, or on any where it is 0.
    static async listen(port = 0) {
        const stranger = new Stranger(spawnAsNobody(["-e", PROGRAM, String(port)]));
        await Promise.race([stranger.#listens, stranger.#ended.then(() => {
            throw new Error("there is no other user to be had (this test runs as root or with sudo), or no such port");
        })]);
        return stranger;
    }

    #ended;
    #listens;

    constructor(program) {
        this.program = program;
        this.said = "";
        this.#ended = once(program, "exit");
        this.#listens = new Promise((resolve) => {
            program.stdout.setEncoding("utf8").on("data", (block) => {
                this.said += block;
                const port = this.said.match(/^port (\d+)\n/);
                if (port) {
                    this.port = Number(port[1]);
                    resolve();
                }
            });
        });
    }

    get connections() {
        return this.said.split("\n").filter((line) => line === "connected").length;
    }

    /// All bytes that came, as text.
    get heard() {
        return this.said.split("\n").filter((line) => line.startsWith("heard "))
            .map((line) => Buffer.from(line.slice(6), "base64").toString()).join("");
    }

    async stop() {
        this.program.stdin.end();
        await this.#ended;
        assert.equal(this.heard, "", "another user was told something");
    }
}
