// The core loop: the human marks the screen and submits, and the agent reads what was marked.
import assert from "node:assert/strict";
import { existsSync, mkdirSync, readdirSync, readlinkSync, renameSync, rmSync, writeFileSync } from "node:fs";
import { join } from "node:path";
import { after, before, beforeEach, describe, it } from "node:test";
import { withApplication } from "./lib/application.mjs";
import { startDesktop, until } from "./lib/desktop.mjs";
import { call, connect } from "./lib/orvane.mjs";
import { Human } from "./lib/overlay.mjs";
import { blend, crop, decodePng, nearly, samePixels } from "./lib/png.mjs";
import { sessionsFolder } from "./lib/recording.mjs";

const GROUND = "#406080";
const DIMMED = blend("#000000", GROUND, 38 / 255);

let desktop;
let window;
before(async () => {
    desktop = await startDesktop("--size", "1280x800");
    desktop.settings({ HasOnboarded: true });
    window = await desktop.openWindow({ className: "EditorTerm", colour: GROUND, position: [0, 0], size: [1270, 770] });
});
after(() => desktop?.stop());
beforeEach(() => rmSync(sessionsFolder(desktop), { recursive: true, force: true }));

const withHuman = (body) => withApplication(desktop, async (application) => {
    await until("it runs", () => application.stderr.includes("orvane: running."));
    await body(new Human(desktop, application, { ground: GROUND, at: [60, 600] }), application);
});

describe("the overlay", () => {
    it("takes the human's marks to the agent", () => withHuman(async (human, application) => {
        const screen = desktop.picture("root");
        await human.openOverlay(DIMMED);
        await human.mark([200, 200], [500, 400], "Button is too small");
        await human.mark([600, 300], [900, 500]);
        human.press("Return");
        const id = await human.submitted();
        const folder = join(sessionsFolder(desktop), id);
        await until("there is a thumbnail", () => existsSync(join(folder, "thumbnail.png")));
        assert.deepEqual(readdirSync(folder).sort(), ["SESSION.md", "display-annotated.png", "region-1.png",
                                                      "region-2.png", "thumbnail.png"]);
        assert.equal(readlinkSync(join(sessionsFolder(desktop), "latest")), folder);
        const region = decodePng(human.file(id, "region-1.png"));
        assert.ok(samePixels(region, crop(screen, 200, 200, 300, 200)));
        const path = `~/.orvane/sessions/${id}`;
        assert.equal(human.clipboard().toString(),
                     `[Orvane] 2 annotation(s) on EditorTerm\nScreenshot: ${path}/display-annotated.png\n` +
                     `Manifest: ${path}/SESSION.md\n  [1] Button is too small → ${path}/region-1.png\n` +
                     `  [2] region → ${path}/region-2.png\n`);

        const client = await connect(desktop.applicationEnv);
        const { error, items } = await call(client, "get_annotations");
        assert.ok(!error);
        assert.ok(items[0].includes("### [1] EditorTerm\n\n**Description:** Button is too small\n"), items[0]);
        assert.ok(items[0].includes("**Position on Display 1:** (200, 200), 300×200 px (region-1.png)"), items[0]);
        const images = items.filter((item) => typeof item !== "string");
        assert.deepEqual(images.map(({ width, height }) => [width, height]), [[300, 200], [300, 200]]);
        await client.close();
        assert.ok(application.stderr === "" || !application.stderr.includes("rror"), application.stderr);
    }));

    it("keeps notices and the pin button out of its pictures", () => withHuman(async (human) => {
        const button = [1280 - 12 - 32 + 6, 40 + 28];
        const notice = [640, 18];
        const screen = (place) => desktop.picture("root").at(...place);
        await until("there is a pin button", () => nearly(screen(button), "#2b2d31"));
        const free = screen(notice);
        const pictures = [];
        for (let turn = 0; turn < 2; ++turn) {
            await human.openOverlay(DIMMED);
            await human.mark([200, 200], [500, 400]);
            human.press("Return");
            pictures.push(decodePng(human.file(await human.submitted(), "display-annotated.png")));
            await until("there is a notice", () => !nearly(screen(notice), free));
            await until("the pin button is back", () => nearly(screen(button), "#2b2d31"));
        }
        for (const picture of pictures) {
            assert.ok(nearly(picture.at(...button), GROUND), picture.at(...button));
            assert.ok(nearly(picture.at(...notice), free), picture.at(...notice));
        }
        assert.ok(samePixels(crop(pictures[0], 0, 0, 1280, 180), crop(pictures[1], 0, 0, 1280, 180)));
    }));

    it("is sent away with Escape and leaves nothing behind", () => withHuman(async (human) => {
        await human.openOverlay(DIMMED);
        await human.mark([200, 200], [500, 400], "never mind");
        human.press("Escape");
        await human.overlayIsGone();
        assert.ok(!existsSync(sessionsFolder(desktop)) || human.sessions().length === 0);
        await human.openOverlay(DIMMED);
        human.press("super+ctrl+p");
        await human.overlayIsGone();
    }));

    it("submits when the hotkey is pressed again, with what is being typed", () => withHuman(async (human) => {
        await human.openOverlay(DIMMED);
        const typed = human.mark([200, 200], [500, 400], "first");
        await typed;
        human.drag([600, 300], [900, 500]);
        await until("there is another region", () => human.application.stderr.split("convert viewRect=").length === 3);
        human.xdotool("type", "--delay", 5, "second");
        human.press("super+ctrl+p");
        const id = await human.submitted();
        assert.match(human.file(id, "SESSION.md").toString(), /\*\*Description:\*\* second\n/);
    }));

    it("keeps Markdown, pipes and line breaks of a label as they are", () => withHuman(async (human) => {
        await human.openOverlay(DIMMED);
        await human.mark([200, 200], [500, 400], "# a | **b** `c` \\ </d>");
        human.press("Return");
        const id = await human.submitted();
        const manifest = human.file(id, "SESSION.md").toString();
        assert.ok(manifest.includes("**Description:** # a | **b** `c` \\ </d>\n"), manifest);
        assert.ok(manifest.includes("| region-1.png | Crop: # a | **b** `c` \\ </d> |\n"), manifest);
    }));

    it("reads the text of a region", () => withHuman(async (human) => {
        window.show("\\033[2J\\033[6;10HDeployment finished with 3 warnings\\r\\n");
        await desktop.settled(window.id);
        await human.openOverlay(DIMMED);
        human.press("o");
        const typed = human.mark([30, 40], [500, 240]);
        await typed;
        const id = await human.submitted();
        assert.equal(human.clipboard().toString(), "Deployment finished with 3 warnings");
        assert.equal(human.file(id, "ocr.txt").toString(), "Deployment finished with 3 warnings");
        window.show("\\033[2J");
        await desktop.settled(window.id);
    }));

    it("does what it can where the data folder cannot be written", () => withHuman(async (human, application) => {
        mkdirSync(sessionsFolder(desktop), { recursive: true });
        const aside = `${sessionsFolder(desktop)}-aside`;
        renameSync(sessionsFolder(desktop), aside);
        writeFileSync(sessionsFolder(desktop), "in the way");
        try {
            await human.openOverlay(DIMMED);
            await human.mark([200, 200], [500, 400]);
            human.press("Return");
            await until("it is over", () => application.stderr.includes("Clipboard updated."), 30);
            assert.match(application.stderr, /orvane: save error display-annotated\.png: /);
            assert.match(application.stderr, /orvane: save error region-1\.png: /);
            application.stderr = "";
        } finally {
            rmSync(sessionsFolder(desktop));
            renameSync(aside, sessionsFolder(desktop));
        }
        await human.openOverlay(DIMMED);
        await human.mark([200, 200], [500, 400]);
        human.press("Return");
        await human.submitted();
    }));

    it("writes to the clipboard even where another program had it last", () => withHuman(async (human) => {
        // Where the other program is so slow that it comes after the submission, there is nothing to see.
        for (let turn = 0; turn < 5; ++turn) {
            await human.openOverlay(DIMMED);
            await human.mark([200, 200], [500, 400]);
            human.press("Return");
            desktop.run("sh", "-c", "printf other | xclip -selection clipboard -i >/dev/null 2>&1");
            await human.submitted();
            const text = human.clipboard().toString();
            if (text.startsWith("[Orvane] 1 annotation")) {
                return;
            }
            assert.equal(text, "other");
        }
        assert.fail("the clipboard is the other program's each time");
    }));
});
