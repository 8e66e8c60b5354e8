// Recordings of a window that changes faster than anybody can compare it.
import assert from "node:assert/strict";
import { existsSync, readlinkSync } from "node:fs";
import { join } from "node:path";
import { after, before, describe, it } from "node:test";
import { startDesktop } from "./lib/desktop.mjs";
import { RawProcess } from "./lib/orvane.mjs";
import { Recording, changeFile, openNoise, pause, sessionsFolder } from "./lib/recording.mjs";

const SIZE = [1920, 1080];
// Far above what a machine that is busy with other things takes, and far below for ever.
const PATIENCE = 20;

let desktop;
before(async () => {
    desktop = await startDesktop("--size", SIZE.join("x"));
    desktop.settings({ SaveRawVideo: false });
});
after(() => desktop?.stop());

/// What `promise` gives, within PATIENCE.
async function inTime(what, promise) {
    let timer;
    const late = new Promise((_, reject) => {
        timer = setTimeout(() => reject(new Error(`in ${PATIENCE} s not so: ${what}`)), PATIENCE * 1000);
    });
    try {
        return await Promise.race([promise, late]);
    } finally {
        clearTimeout(timer);
    }
}

describe("a window full of noise", () => {
    let window;
    before(async () => { window = await openNoise(desktop, "NoiseWindow", SIZE); });
    after(() => window?.close());

    for (const interval of [16, 100]) {
        it(`is polled and left at an interval of ${interval} ms`, async () => {
            const server = new RawProcess(desktop.env);
            try {
                const recording = await Recording.start(desktop, server, "NoiseWindow", { interval_ms: interval });
                let changes = 0;
                for (let i = 0; i < 5; i++) {
                    await pause(300);
                    const events = await inTime("a poll is answered", recording.poll());
                    for (const event of events.filter((text) => text.startsWith("major_change"))) {
                        assert.deepEqual(recording.sizeOfPicture(changeFile(event)), SIZE);
                        changes++;
                    }
                }
                assert.ok(changes > 0);

                // Nothing that waits keeps the process from ending, nor a poll that is under way.
                server.send({ jsonrpc: "2.0", id: 1, method: "tools/call", params: { name: "poll_recording" } });
                server.process.kill("SIGTERM");
                assert.equal(await inTime("the process has ended", server.closed), 0);
                const markdown = recording.report();
                const [, frames, file] = markdown.match(
                    /\| recording_end \| Recording stopped\. Duration: \d+\.\ds, (\d+) frames analyzed\. \| (\S+) \|/);
                assert.ok(markdown.includes(`- **Frames captured:** ${frames}\n`), markdown);
                assert.deepEqual(recording.sizeOfPicture(file), SIZE);
                assert.equal(readlinkSync(join(sessionsFolder(desktop), "latest")), recording.folder);
                assert.ok(existsSync(recording.file("frame-000-start.png")));
                // At the other pace a quick machine may search every frame.
                if (interval === 16)
                    assert.match(server.stderr, /orvane: [1-9]\d* frame\(s\) came faster than they could be searched/);
            } finally {
                if (!server.finished) {
                    server.process.kill("SIGKILL");
                }
            }
        });
    }
});
