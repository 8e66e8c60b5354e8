// Every tool through the public SDK on a desktop with windows, and what each makes of bad arguments.
import assert from "node:assert/strict";
import { after, before, describe, it } from "node:test";
import { startDesktop, until } from "./lib/desktop.mjs";
import { INVALID_ARGUMENTS, call, connect, withProcess } from "./lib/orvane.mjs";
import { assertSamePixels, blend, nearly } from "./lib/png.mjs";

const TOOLS = [
    ["list_windows"], ["capture_window", "app_name"], ["capture_region", "x", "y", "width", "height"],
    ["activate_window", "app_name"], ["capture_window_region", "app_name", "x", "y", "width", "height"],
    ["capture_annotated", "app_name", "regions"], ["capture_diff", "app_name"], ["start_recording", "app_name"],
    ["stop_recording"], ["poll_recording"], ["read_frame", "frame"], ["get_annotations"],
    ["annotate_understanding", "strokes"], ["get_annotation_feedback", "sessionId"],
];
const NOT_BUILT = ["annotate_understanding"];
const WINDOW_KEYS = ["appName", "windowTitle", "pid", "windowId", "x", "y", "width", "height", "displayId", "displayBounds"];

let desktop;
let client;
let alpha;
let beta;
before(async () => {
    desktop = await startDesktop("--size", "1280x800");
    alpha = await desktop.openWindow({ className: "AlphaTerm", position: [60, 80], size: [500, 300] });
    beta = await desktop.openWindow({ className: "BetaTerm", position: [300, 200], size: [500, 300], colour: "#602040" });
    client = await connect(desktop.env);
});
after(async () => {
    await client?.close();
    await desktop?.stop();
});

describe("the catalogue", () => {
    it("lists 14 tools in their order with what they require", async () => {
        const { tools } = await client.listTools();
        assert.deepEqual(tools.map((tool) => [tool.name, ...(tool.inputSchema.required ?? [])]), TOOLS);
        for (const tool of tools) {
            assert.deepEqual(Object.keys(tool).sort(), ["description", "inputSchema", "name"]);
            assert.equal(tool.inputSchema.type, "object");
        }
    });

    it("belongs to a server that introduces itself", () => {
        assert.deepEqual(client.getServerVersion(), { name: "orvane", version: "0.1.0" });
        assert.deepEqual(client.getServerCapabilities(), { tools: { listChanged: false } });
        assert.equal(client.getInstructions().split("\n\n").length, 4);
    });

    for (const name of NOT_BUILT) {
        it(`${name} says that it is not there yet`, async () => {
            const { error, text } = await call(client, name, { app_name: "AlphaTerm", regions: [], strokes: [] });
            assert.ok(error);
            assert.equal(text, `Error: Not available in this build: ${name}`);
        });
    }

    it("does not hold a tool of another name", async () => {
        for (const name of ["", "List_windows", "list_windows ", "../list_windows"]) {
            assert.equal((await call(client, name)).text, `Error: Unknown tool: ${name}`);
        }
    });
});

describe("list_windows", () => {
    it("gives both windows with everything an agent needs", async () => {
        const { error, text } = await call(client, "list_windows");
        assert.ok(!error, text);
        const windows = JSON.parse(text);
        assert.deepEqual(windows.map((window) => window.appName), ["AlphaTerm", "BetaTerm"]);
        for (const [window, own] of [[windows[0], alpha], [windows[1], beta]]) {
            assert.deepEqual(Object.keys(window), WINDOW_KEYS);
            const frame = desktop.frame(own.id);
            assert.equal(window.windowTitle, own.title);
            assert.equal(window.pid, own.pid);
            assert.equal(window.windowId, own.id);
            assert.deepEqual([window.x, window.y, window.width, window.height],
                             [frame.x, frame.y, frame.width, frame.height]);
            assert.equal(window.displayBounds, "0,0,1280,800");
            assert.ok(Number.isInteger(window.displayId) && window.displayId > 0 && window.displayId < 2 ** 32);
        }
    });

    it("does not mind arguments it does not know", async () => {
        const { error, text } = await call(client, "list_windows", { app_name: 7, more: { deep: [null] } });
        assert.ok(!error);
        assert.equal(JSON.parse(text).length, 2);
    });

    it("sees a window come and go", async () => {
        const gamma = await desktop.openWindow({ className: "GammaTerm" });
        const names = async () => JSON.parse((await call(client, "list_windows")).text).map((window) => window.appName);
        assert.deepEqual(await names(), ["AlphaTerm", "BetaTerm", "GammaTerm"]);
        await gamma.close();
        await until("the window is gone from the list", async () => (await names()).length === 2);
    });
});

describe("activate_window", () => {
    const active = () => Number(desktop.run("xdotool", "getactivewindow").toString());

    it("brings an application to the front", async () => {
        assert.deepEqual((await call(client, "activate_window", { app_name: "alphaterm" })).text,
                         "Activated AlphaTerm (1 window(s) raised)");
        await until("alpha is active", () => active() === alpha.id);
        assert.equal((await call(client, "activate_window", { app_name: "BETA", extra: 1 })).text,
                     "Activated BetaTerm (1 window(s) raised)");
        await until("beta is active", () => active() === beta.id);
    });

    it("takes the earlier of two that match", async () => {
        assert.equal((await call(client, "activate_window", { app_name: "term" })).text,
                     "Activated AlphaTerm (1 window(s) raised)");
    });

    it("names what there is when nothing matches", async () => {
        const { error, text } = await call(client, "activate_window", { app_name: "NoSuch" });
        assert.ok(error);
        assert.equal(text, "Error: App 'NoSuch' not found. Available: AlphaTerm, BetaTerm");
    });

    for (const value of [undefined, null, 7, true, ["AlphaTerm"], { app_name: "AlphaTerm" }]) {
        it(`refuses ${JSON.stringify(value)} as a name`, async () => {
            const { error, text } = await call(client, "activate_window", { app_name: value });
            assert.ok(error);
            assert.equal(text, "Error: app_name is required");
        });
    }
});

describe("capture_window", () => {
    it("tells how to draw on what it shows", async () => {
        const frame = desktop.frame(alpha.id);
        const { text, images } = await call(client, "capture_window", { app_name: "alpha", unknown: [] });
        assert.equal(text,
            `Captured AlphaTerm — ${alpha.title}.\nwindowId: ${alpha.id}  (pass to annotate_understanding as frame ` +
            `{"type":"window","windowId":${alpha.id}})\nReturned image: ${frame.width}×${frame.height} px — measure any ` +
            "annotation coordinates in THIS image and pass these as the frame's imageWidth/imageHeight.\n" +
            `Native window: ${frame.width}×${frame.height} pt.`);
        assert.equal(images.length, 1);
    });

    it("takes the first window for an empty name", async () => {
        const { text } = await call(client, "capture_window", { app_name: "" });
        assert.match(text, /^Captured AlphaTerm/);
    });
});

describe("capture_diff", () => {
    it("stores first, compares second, whatever the letter case, and then begins again", async () => {
        const frame = desktop.frame(beta.id);
        const stored = "Stored 'before' snapshot of BetaTerm " +
            `(${frame.width}x${frame.height}). Make your changes, then call capture_diff again with the same app_name ` +
            "to get the before/after comparison.";
        const first = await call(client, "capture_diff", { app_name: "betaTERM" });
        assert.equal(first.text, stored);
        assert.equal(first.images.length, 0);
        const second = await call(client, "capture_diff", { app_name: "BETAterm" });
        assert.match(second.text, new RegExp("^BEFORE \\(\\d{4}-\\d\\d-\\d\\dT\\d\\d:\\d\\d:\\d\\dZ\\) and " +
            "AFTER \\(\\d{4}-\\d\\d-\\d\\dT\\d\\d:\\d\\d:\\d\\dZ\\) of BetaTerm " +
            `\\(${frame.width}x${frame.height}\\)$`));
        assert.equal(second.images.length, 2);
        assert.equal((await call(client, "capture_diff", { app_name: "betaterm" })).text, stored);
    });
});

describe("capture_annotated", () => {
    const RED = "#ff3b30";

    it("shows each region on the window and tells which is which", async () => {
        const frame = desktop.frame(alpha.id);
        const plain = await call(client, "capture_window", { app_name: "AlphaTerm" });
        const regions = [
            { x: 40, y: 60, width: 120, height: 80, label: "the button" },
            { x: 220, y: 60, width: 120, height: 80, label: "Ünïcode — 日本 👋" },
            { x: 40, y: 200, width: 120, height: 40, label: "" },
            { x: 220, y: 200, width: -40, height: 40, label: "inverted" },
            { x: 380, y: 60, width: 0, height: 0, label: "two\nlines" },
            { x: 9000, y: -9000, width: 40, height: 40, label: "elsewhere" },
        ];
        const { error, text, images } = await call(client, "capture_annotated", { app_name: "alphaterm", regions });
        assert.ok(!error, text);
        const lines = regions.map(({ x, y, width, height, label }, i) =>
            `  [${i + 1}] (${x},${y} ${width}x${height}) ${label}\n`);
        assert.equal(text, `Captured AlphaTerm - ${alpha.title} (${frame.width}x${frame.height}) with 6 annotation(s):\n` +
            lines.join(""));
        const [picture] = images;
        assert.deepEqual([picture.width, picture.height], [frame.width, frame.height]);
        // The badge's left side, the tint inside the first region, and the untouched window beside it.
        assert.equal(picture.at(40 - 28 / 3 + 2 | 0, 60 + 28 / 6 | 0), RED);
        const tinted = blend(RED, alpha.colour, 0.15);
        assert.ok(nearly(picture.at(100, 110), tinted), `${picture.at(100, 110)} and not ${tinted}`);
        assert.equal(picture.at(190, 110), plain.images[0].at(190, 110));
    });

    it("draws nothing for no regions and counts them", async () => {
        const plain = await call(client, "capture_window", { app_name: "AlphaTerm" });
        const { text, images } = await call(client, "capture_annotated", { app_name: "AlphaTerm", regions: [] });
        assert.match(text, / with 0 annotation\(s\):\n$/);
        assertSamePixels(images[0], plain.images[0], "no regions");
    });

    for (const regions of [undefined, null, "[]", {}, 5, [1], [null], [[]], [{}, "x"]]) {
        it(`refuses ${JSON.stringify(regions)} as regions`, async () => {
            const { error, text } = await call(client, "capture_annotated", { app_name: "AlphaTerm", regions });
            assert.ok(error);
            assert.equal(text, INVALID_ARGUMENTS);
        });
    }

    it("leaves out regions that are not whole", async () => {
        const { text } = await call(client, "capture_annotated", { app_name: "AlphaTerm", regions: [
            {}, { x: 1, y: 2, width: 3, height: 4 }, { x: 1.5, y: 2, width: 3, height: 4, label: "a" },
            { x: 1, y: 2, width: "3", height: 4, label: "b" }, { x: 1, y: 2, width: 3, height: 4, label: 5 },
            { x: 1, y: 2, width: 3, height: 4, label: "whole", colour: "red" }] });
        assert.match(text, / with 1 annotation\(s\):\n {2}\[1\] \(1,2 3x4\) whole\n$/);
    });

    it("takes a thousand regions and labels longer than the screen", async () => {
        const regions = Array.from({ length: 1000 }, (_, i) => ({ x: i % 400, y: i % 250, width: 30, height: 20,
                                                                   label: "long ".repeat(i % 100 === 0 ? 2000 : 1) }));
        const { error, text } = await call(client, "capture_annotated", { app_name: "AlphaTerm", regions });
        assert.ok(!error, text);
        assert.match(text, / with 1000 annotation\(s\):/);
        await client.ping();
    });
});

describe("text recognition", () => {
    const WORDS = ["Deployment finished", "3 warnings, 0 errors", "Press Enter to continue"];
    let sign;
    before(async () => {
        sign = await desktop.openWindow({ className: "SignTerm", position: [400, 420], size: [420, 200],
                                          text: WORDS.map((line) => `\\r\\n  ${line}\\r\\n`).join("") });
    });
    after(() => sign?.close());

    const recognized = (text) => text.split("\n\nRecognized text:\n")[1]?.split("\n");

    it("reads a terminal window", async () => {
        const { width, height } = desktop.frame(sign.id);
        const args = { app_name: "SignTerm", x: 0, y: 30, width, height: height - 30 };
        const { text } = await call(client, "capture_window_region", { ...args, ocr: true });
        assert.deepEqual(recognized(text), WORDS);
        assert.equal(recognized((await call(client, "capture_window_region", args)).text), undefined);
    });

    it("reads a part of the screen", async () => {
        const { x, y, width, height } = desktop.frame(sign.id);
        await call(client, "activate_window", { app_name: "SignTerm" });
        const { text } = await call(client, "capture_region", { x, y: y + 30, width, height: height - 30, ocr: true });
        assert.deepEqual(recognized(text), WORDS);
    });

    it("finds nothing where there is nothing", async () => {
        for (const size of [1, 60]) {
            const { error, text } = await call(client, "capture_region",
                                               { x: 5, y: 5, width: size, height: size, ocr: true });
            assert.ok(!error);
            assert.ok(text.endsWith(" px."), text);
        }
    });

    it("is left out, with one line in the log, where its data are missing", () =>
        withProcess({ ...desktop.env, TESSDATA_PREFIX: desktop.home }, async (server) => {
            const args = { app_name: "SignTerm", x: 0, y: 30, width: 300, height: 100, ocr: true };
            for (let i = 0; i < 2; ++i) {
                const { error, text } = await server.callTool("capture_window_region", args);
                assert.ok(!error);
                assert.ok(text.endsWith(" px."), text);
            }
            await server.end();
            assert.equal(server.stderr.match(/OCR/g)?.length, 1, server.stderr);
        }));
});

describe("arguments of the capture tools", () => {
    const region = { x: 10, y: 10, width: 50, height: 40 };
    const named = { app_name: "AlphaTerm" };

    for (const [name, others] of [["capture_window", {}], ["capture_diff", {}], ["capture_window_region", region],
                                  ["capture_annotated", { regions: [] }]]) {
        for (const value of [undefined, null, 7, false, ["AlphaTerm"], {}, "NoSuch", "AlphaTerm\0"]) {
            it(`${name} refuses ${JSON.stringify(value)} as app_name`, async () => {
                const { error, text } = await call(client, name, { ...others, app_name: value });
                assert.ok(error);
                assert.equal(text, INVALID_ARGUMENTS);
            });
        }
    }

    for (const [name, others] of [["capture_region", {}], ["capture_window_region", named]]) {
        for (const key of Object.keys(region)) {
            for (const value of [undefined, null, "10", 10.5, -0.5, {}, [10], 1e300]) {
                it(`${name} refuses ${JSON.stringify(value)} as ${key}`, async () => {
                    const { error, text } = await call(client, name, { ...others, ...region, [key]: value });
                    assert.ok(error);
                    assert.equal(text, INVALID_ARGUMENTS);
                });
            }
        }

        it(`${name} does not mind other arguments`, async () => {
            const { error, images } = await call(client, name, { ...others, ...region, ocr: "true", z: 1 });
            assert.ok(!error);
            assert.deepEqual([images[0].width, images[0].height], [50, 40]);
        });

        const none = [[0, 40], [50, 0], [0, 0], [-50, 40], [50, -40], [-1, -1]];
        const huge = [[2147483647, 2147483647], [1000000000, 1000000000], [9007199254740991, 10],
                      [100000, 100000]];
        for (const [width, height] of [...none, ...huge]) {
            it(`${name} fails for a size of ${width}x${height} and lives on`, async () => {
                const { error } = await call(client, name, { ...others, ...region, width, height });
                assert.ok(error);
                await client.ping();
            });
        }

        for (const [x, y] of [[-20, -30], [1270, 790], [-100000, 5], [2147483647, -2147483648], [9007199254740991, 0]]) {
            it(`${name} lives through an origin of (${x}, ${y})`, async () => {
                const { error, text, images } = await call(client, name, { ...others, ...region, x, y });
                if (!error) {
                    assert.match(text, new RegExp(`\\(${x},${y}\\)? ?\\(?50x40`));
                    assert.equal(images.length, 1);
                }
                await client.ping();
            });
        }
    }

    it("arguments of another type than an object count as none", () => withProcess(desktop.env, async (server) => {
        for (const args of [undefined, null, 5, "AlphaTerm", ["AlphaTerm"]]) {
            assert.equal((await server.callTool("capture_window", args)).text, INVALID_ARGUMENTS);
            assert.equal((await server.callTool("activate_window", args)).text, "Error: app_name is required");
        }
    }));
});
