// What the capture tools show against what xwd shows of the same windows.
import assert from "node:assert/strict";
import { readdirSync, readFileSync } from "node:fs";
import { join } from "node:path";
import { after, before, describe, it } from "node:test";
import { startDesktop, until } from "./lib/desktop.mjs";
import { call, connect } from "./lib/orvane.mjs";
import { assertSamePixels, colours, crop, decodePng, samePixels } from "./lib/png.mjs";

const PICTURE = "\\033[2J\\033[H\\033[41m red \\033[42m green \\033[44m blue \\033[0m\\r\\nOrvane sees text\\r\\n\\033[45m      ";

for (const compositor of [true, false]) {
    describe(compositor ? "with a compositor" : "without a compositor", () => {
        let desktop;
        let client;
        let saved;
        before(async () => {
            desktop = await startDesktop("--size", "1600x900", ...(compositor ? [] : ["--no-compositor"]));
            client = await connect(desktop.env);
        });
        after(async () => {
            await client?.close();
            await desktop?.stop();
        });

        /// The picture in full size that the call after the last look has saved.
        function newestSaved(suffix) {
            const folder = join(desktop.home, ".orvane/captures");
            const names = readdirSync(folder).filter((name) => name.endsWith(suffix)).sort();
            const name = names.at(-1);
            assert.ok(name && name !== saved, "nothing new was saved");
            saved = name;
            return decodePng(readFileSync(join(folder, name)));
        }

        const clientArea = (picture, window, size = window.size) => {
            const frame = desktop.frame(window.id);
            assert.deepEqual([picture.width, picture.height], [frame.width, frame.height]);
            return crop(picture, frame.left, frame.top, ...size);
        };

        it("an empty screen has the colour of its background", async () => {
            desktop.run("xsetroot", "-solid", "#3366cc");
            const { text, images } = await call(client, "capture_region", { x: 100, y: 50, width: 300, height: 200 });
            assert.equal(text, "Captured region (100,50) 300x200. Returned image: 300×200 px.");
            assertSamePixels(images[0], crop(desktop.picture("root"), 100, 50, 300, 200), "the background");
            if (!compositor) {
                assert.deepEqual([...colours(images[0])], [["#3366cc", 60000]]);
            }
        });

        it("windows come out pixel for pixel: open, covered, and partly beyond the edge", async () => {
            const shown = await desktop.openWindow({ className: "Shown", position: [200, 150], size: [620, 360],
                                                     text: PICTURE });
            const expected = desktop.picture(shown.id);
            assert.ok(colours(expected).size > 8);

            const open = await call(client, "capture_window", { app_name: "Shown" });
            assertSamePixels(clientArea(open.images[0], shown), expected, "the open window");

            const cover = await desktop.openWindow({ className: "Cover", position: [180, 120], size: [700, 420],
                                                     colour: "#aa2211" });
            const hidden = await call(client, "capture_region", { x: 210, y: 160, width: 600, height: 340 });
            assert.deepEqual([...colours(hidden.images[0]).keys()], ["#aa2211"]);
            const covered = await call(client, "capture_window", { app_name: "Shown" });
            assertSamePixels(clientArea(covered.images[0], shown), expected, "the covered window");

            const part = await call(client, "capture_window_region", { app_name: "Shown", x: 30, y: 40, width: 200, height: 90 });
            assert.match(part.text, /^Captured region \(30,40 200x90\) of Shown - window \d+\. Returned image: 200×90 px\.$/);
            assertSamePixels(part.images[0], crop(covered.images[0], 30, 40, 200, 90), "the part of the covered window");

            await desktop.move(shown.id, -300, 700);
            const beyond = await call(client, "capture_window", { app_name: "Shown" });
            assertSamePixels(clientArea(beyond.images[0], shown), expected, "the window beyond the edge");
            const { x, y } = desktop.frame(shown.id);
            assert.ok(x < 0 && y + shown.size[1] > 900, `the window was moved to (${x}, ${y})`);
            const [listed] = JSON.parse((await call(client, "list_windows")).text).filter(({ appName }) => appName === "Shown");
            assert.deepEqual([listed.x, listed.y], [x, y]);
            await cover.close();
            await shown.close();
        });

        it("the screen comes out as the eye sees it, and in full size on disk", async () => {
            const one = await desktop.openWindow({ className: "One", position: [100, 100], size: [500, 300], text: PICTURE });
            const two = await desktop.openWindow({ className: "Two", position: [400, 250], colour: "#225522" });
            const { images } = await call(client, "capture_region", { x: 0, y: 0, width: 1600, height: 900 });
            assert.deepEqual([images[0].width, images[0].height], [1024, 576]);
            assertSamePixels(newestSaved("-region.png"), desktop.picture("root"), "the screen");
            assert.equal(images[0].at(375, 250), "#225522");
            await one.close();
            await two.close();
        });

        it("a window larger than an agent's limit is shrunk for the agent and whole on disk", async () => {
            const wide = await desktop.openWindow({ className: "Wide", position: [50, 60], size: [1300, 700],
                                                    colour: "#405060" });
            const { text, images } = await call(client, "capture_window", { app_name: "Wide" });
            const frame = desktop.frame(wide.id);
            assert.equal(images[0].width, 1024);
            assert.ok(Math.abs(images[0].height - frame.height * 1024 / frame.width) <= 1, `${images[0].height}`);
            assert.ok(text.endsWith(`Native window: ${frame.width}×${frame.height} pt.`));
            assert.equal(images[0].at(512, 300), "#405060");
            assertSamePixels(clientArea(newestSaved("-Wide.png"), wide), desktop.picture(wide.id), "the wide window");
            await wide.close();
        });

        it("a region that reaches beyond its window shows the window where the window is", async () => {
            const small = await desktop.openWindow({ className: "Small", position: [300, 300], size: [200, 150] });
            const frame = desktop.frame(small.id);
            const whole = await call(client, "capture_window", { app_name: "Small" });
            const args = { app_name: "Small", x: frame.width - 60, y: frame.height - 50, width: 100, height: 90 };
            const { error, text, images } = await call(client, "capture_window_region", args);
            assert.ok(!error, text);
            assert.match(text, new RegExp(`\\(${args.x},${args.y} 100x90\\)`));
            assertSamePixels(crop(images[0], 0, 0, 60, 50), crop(whole.images[0], args.x, args.y, 60, 50), "the corner");
            await small.close();
        });

        it("a change between two calls is seen", async () => {
            const changing = await desktop.openWindow({ className: "Changing", position: [300, 300], text: PICTURE });
            const before = desktop.picture(changing.id);
            await call(client, "capture_diff", { app_name: "Changing" });
            changing.show("\\033[43m\\033[2J");
            await until("the change shows", () => !samePixels(desktop.picture(changing.id), before));
            await desktop.settled(changing.id);
            const { images } = await call(client, "capture_diff", { app_name: "changing" });
            assertSamePixels(clientArea(images[0], changing), before, "before");
            assertSamePixels(clientArea(images[1], changing), desktop.picture(changing.id), "after");
            await changing.close();
        });

        it("a window that is resized between two calls comes out in its new size", async () => {
            const elastic = await desktop.openWindow({ className: "Elastic", position: [200, 200], size: [300, 200] });
            await call(client, "capture_window", { app_name: "Elastic" });
            for (const wanted of [[500, 350], [150, 420], [400, 300]]) {
                const size = await desktop.resize(elastic.id, wanted);
                const { result, picture } = await desktop.whileSteady(
                    elastic.id, () => call(client, "capture_window", { app_name: "Elastic" }));
                assert.ok(!result.error, result.text);
                assertSamePixels(clientArea(result.images[0], elastic, size), picture, `at ${size}`);
            }
            await elastic.close();
        });
    });
}
