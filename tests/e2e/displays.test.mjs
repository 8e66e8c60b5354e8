// Several displays, and displays with more than one pixel a point.
import assert from "node:assert/strict";
import { describe, it } from "node:test";
import { startDesktop } from "./lib/desktop.mjs";
import { call, connect } from "./lib/orvane.mjs";
import { colours } from "./lib/png.mjs";

const TWO_MONITORS = ["--monitors", "Left:800x600+0+0,Right:640x480+800+0"];

/// Runs `body` on a desktop of its own with a connected client.
async function onDesktop(options, body) {
    const desktop = await startDesktop(...options);
    const client = await connect(desktop.env);
    try {
        return await body(desktop, client);
    } finally {
        await client.close();
        await desktop.stop();
    }
}

const windows = async (client) => JSON.parse((await call(client, "list_windows")).text);

describe("two monitors", () => {
    const displaysOfWindows = () => onDesktop(TWO_MONITORS, async (desktop, client) => {
        await desktop.openWindow({ className: "OnLeft", position: [100, 100], size: [300, 200] });
        await desktop.openWindow({ className: "OnRight", position: [900, 100], size: [300, 200], colour: "#205020" });
        await desktop.openWindow({ className: "MostlyRight", position: [700, 300], size: [350, 150] });
        const listed = await windows(client);
        assert.deepEqual(listed.map(({ appName, displayBounds }) => [appName, displayBounds]), [
            ["OnLeft", "0,0,800,600"], ["OnRight", "800,0,640,480"], ["MostlyRight", "800,0,640,480"]]);
        const { images } = await call(client, "capture_region", { x: 920, y: 140, width: 200, height: 100 });
        assert.deepEqual([...colours(images[0])], [["#205020", 20000]]);
        return listed.map(({ displayId }) => displayId);
    });

    it("have ids of their own that stay the same on the next start", async () => {
        const [left, right, mostlyRight] = await displaysOfWindows();
        assert.notEqual(left, right);
        assert.ok(left > 0 && right > 0);
        assert.equal(mostlyRight, right);
        assert.deepEqual(await displaysOfWindows(), [left, right, right]);
    });
});

describe("pixels and points", () => {
    for (const scale of [2, 1.5]) {
        it(`at ${scale} pixels a point`, () => onDesktop(["--size", "1200x900", "--scale", String(scale)],
            async (desktop, client) => {
                const window = await desktop.openWindow({ className: "Dense", position: [120, 120], size: [600, 420] });
                const frame = desktop.frame(window.id);
                const [listed] = await windows(client);
                assert.deepEqual([listed.x, listed.y, listed.width, listed.height],
                                 [frame.x, frame.y, frame.width, frame.height].map((pixels) => Math.trunc(pixels / scale)));
                assert.equal(listed.displayBounds, `0,0,${1200 / scale},${900 / scale}`);
                assert.equal(listed.windowId, window.id);
                // Whole points only, so that a region of the screen has a sure number of pixels.
                const { images } = await call(client, "capture_region", { x: 160, y: 160, width: 100, height: 60 });
                assert.deepEqual([images[0].width, images[0].height], [100 * scale, 60 * scale]);
                assert.equal(images[0].at(5, 5), window.colour);
            }));
    }

    it("differ from monitor to monitor", () => onDesktop([...TWO_MONITORS, "--scale", "Left=2;Right=1"],
        async (desktop, client) => {
            await desktop.openWindow({ className: "OnLeft", position: [100, 100], size: [300, 200] });
            await desktop.openWindow({ className: "OnRight", position: [900, 100], size: [300, 200], colour: "#205020" });
            const listed = await windows(client);
            assert.deepEqual(listed.map(({ displayBounds }) => displayBounds), ["0,0,400,300", "800,0,640,480"]);
            const left = await call(client, "capture_region", { x: 60, y: 70, width: 80, height: 40 });
            assert.deepEqual([...colours(left.images[0])], [["#204060", 160 * 80]]);
            const right = await call(client, "capture_region", { x: 920, y: 140, width: 80, height: 40 });
            assert.deepEqual([...colours(right.images[0])], [["#205020", 80 * 40]]);
        }));
});
