// The movie that a recording leaves by default: in its own time, and to be played whatever became of its process.
import assert from "node:assert/strict";
import { existsSync, readFileSync, rmSync, writeFileSync } from "node:fs";
import { after, before, describe, it } from "node:test";
import { startDesktop, until } from "./lib/desktop.mjs";
import { RawProcess, withProcess } from "./lib/orvane.mjs";
import { Recording, fillAll, frameSize, pause, sessionsFolder, sizeOf, withWindow,
         withWindowAndClient } from "./lib/recording.mjs";

let desktop;
before(async () => { desktop = await startDesktop("--size", "1280x800"); });
after(() => desktop?.stop());

describe("a recording with a movie", () => {
    const movie = (recording) => recording.file("recording.mp4");

    /// What ffprobe counts in a file, or nothing when it is none that plays.
    function probe(file) {
        let text;
        try {
            text = desktop.run("ffprobe", "-v", "error", "-count_frames", "-show_streams", "-show_format", "-of", "json",
                               file);
        } catch (error) {
            assert.ok("status" in error, error);
            return null;
        }
        const { streams, format } = JSON.parse(text);
        assert.equal(streams.length, 1);
        return { stream: streams[0], frames: Number(streams[0].nb_read_frames), seconds: Number(format.duration) };
    }

    /// The types of a file's outer boxes, which have to fill it exactly.
    function boxes(file) {
        const bytes = readFileSync(file);
        const types = [];
        let offset = 0;
        while (offset < bytes.length) {
            const size = bytes.readUInt32BE(offset) === 1 ? Number(bytes.readBigUInt64BE(offset + 8))
                                                          : bytes.readUInt32BE(offset);
            types.push(bytes.toString("latin1", offset + 4, offset + 8));
            assert.ok(size >= 8, `a box ${types.at(-1)} of ${size} bytes`);
            offset += size;
        }
        assert.equal(offset, bytes.length, `${file} is cut off`);
        return types;
    }

    function assertFinished(file, window) {
        const types = boxes(file);
        assert.equal(types[0], "ftyp");
        assert.ok(types.includes("moov") && types.indexOf("moov") < types.indexOf("mdat"), types.join(" "));
        const { stream, frames, seconds } = probe(file);
        assert.deepEqual([stream.codec_name, stream.pix_fmt], ["h264", "yuv420p"]);
        assert.deepEqual(sizeOf(stream), frameSize(desktop, window).map((length) => length + length % 2));
        assert.ok(frames >= 1 && frames <= 31 * (seconds + 1), `${frames} frames in ${seconds} s`);
        return seconds;
    }

    /// Which of red, green and blue prevails in each frame of a movie, without repetitions.
    function coloursInOrder(file) {
        const pixels = desktop.run("ffmpeg", "-v", "error", "-i", file, "-vf", "scale=1:1:flags=area", "-f", "rawvideo",
                                   "-pix_fmt", "rgb24", "-");
        const names = [];
        for (let i = 0; i + 2 < pixels.length; i += 3) {
            const frame = [...pixels.subarray(i, i + 3)];
            const name = ["red", "green", "blue"][frame.indexOf(Math.max(...frame))];
            if (name !== names.at(-1)) {
                names.push(name);
            }
        }
        return names;
    }

    it("shows what happened at the pace of the clock", () =>
        withWindowAndClient(desktop, "MovieTerm", async (window, client) => {
            const begin = Date.now();
            const recording = await Recording.start(desktop, client, "MovieTerm");
            const started = Date.now();
            for (const colour of [28, 19]) {
                await pause(900);
                fillAll(window, colour);
            }
            await pause(900);
            const stopping = Date.now();
            const { items } = await recording.stop();
            const file = movie(recording);
            const seconds = assertFinished(file, window);
            const least = (stopping - started) / 1000 - 2;
            const most = (Date.now() - begin) / 1000 + 1;
            assert.ok(seconds > least && seconds < most, `${seconds} s is not within ${least} and ${most}`);
            assert.deepEqual(coloursInOrder(file), ["red", "green", "blue"]);
            assert.equal(items.length, 5);
        }, { colour: "#c02020" }));

    it("looks at the pace of the movie, whatever the interval", () =>
        withWindowAndClient(desktop, "EagerTerm", async (window, client) => {
            const recording = await Recording.start(desktop, client, "EagerTerm", { interval_ms: 1e12 });
            await recording.events();
            // Changes are sought once a second between neighbouring frames, so only what never rests is found.
            let colour = 16;
            const events = await until("what never rests is found", async () => {
                fillAll(window, colour = 16 + (colour + 77) % 200);
                const found = await recording.poll();
                return found.length > 0 && found;
            }, 30);
            assert.match(events[0], /^major_change \| Major visual update \(100% of screen/);
            await recording.stop();
            assertFinished(movie(recording), window);
        }));

    it("is finished when its agent leaves", () => withWindow(desktop, "LeftMovieTerm", async (window) => {
        let recording;
        await withProcess(desktop.env, async (server) => {
            recording = await Recording.start(desktop, server, "LeftMovieTerm");
            await until("there is something of it", () => existsSync(movie(recording)));
        });
        assertFinished(movie(recording), window);
        assert.match(recording.report(), /\| recording_end \| Recording stopped\. Duration: /);
    }));

    for (const signal of ["SIGTERM", "SIGINT", "SIGHUP"]) {
        it(`is finished when ${signal} asks the process to end`, () =>
            withWindow(desktop, "EndedMovieTerm", async (window) => {
                const server = new RawProcess(desktop.env);
                const recording = await Recording.start(desktop, server, "EndedMovieTerm");
                await until("there is something of it", () => existsSync(movie(recording)));
                server.process.kill(signal);
                assert.equal(await server.closed, 0);
                assertFinished(movie(recording), window);
                assert.match(recording.report(), /\| recording_end \| Recording stopped\. Duration: /);
            }));
    }

    it("plays as far as it was written when the process is killed", () =>
        withWindow(desktop, "KilledMovieTerm", async (window) => {
            const server = new RawProcess(desktop.env);
            const recording = await Recording.start(desktop, server, "KilledMovieTerm");
            const file = movie(recording);
            const before = await until("a part of the movie is on the disk", () => {
                const found = probe(file);
                return found?.frames > 1 && found;
            }, 20);
            server.process.kill("SIGKILL");
            assert.equal(await server.closed, "SIGKILL");
            const left = probe(file);
            assert.ok(left.frames >= before.frames, `${left.frames} of ${before.frames} frames`);
            assert.deepEqual(sizeOf(recording.picture("frame-000-start.png")), frameSize(desktop, window));
            await withProcess(desktop.env, async (next) => {
                const another = await Recording.start(desktop, next, "KilledMovieTerm");
                await another.events();
                await another.stop();
                assertFinished(movie(another), window);
            });
        }));

    it("does without it where it cannot be written", () => withWindow(desktop, "MuteTerm", async () => {
        const folder = sessionsFolder(desktop);
        rmSync(folder, { recursive: true, force: true });
        writeFileSync(folder, "a file");
        await withProcess(desktop.env, async (server) => {
            const { error, text } = await server.callTool("start_recording", { app_name: "MuteTerm" });
            assert.ok(!error, text);
            await until("it is in the log", () => /failed to start video writer: ./.test(server.stderr));
            assert.ok(!(await server.callTool("stop_recording", {})).error);
            await server.assertAlive();
        });
    }));
});
