// The human at the overlay: hotkey, pointer and keys of a virtual desktop.
import { readFileSync } from "node:fs";
import { join } from "node:path";
import { until } from "./desktop.mjs";
import { nearly } from "./png.mjs";
import { sessionIds, sessionsFolder } from "./recording.mjs";

const count = (text, part) => text.split(part).length - 1;

export class Human {
    /// `ground` is the colour that the screen has at (x, y), a place that nothing is drawn at.
    constructor(desktop, application, { ground, at: [x, y] }) {
        this.desktop = desktop;
        this.application = application;
        this.shows = (colour) => nearly(desktop.picture("root").at(x, y), colour);
        this.ground = ground;
    }

    xdotool(...words) {
        this.desktop.run("xdotool", ...words.map(String));
    }

    press(key) {
        this.xdotool("key", key);
    }

    /// Presses the hotkey and waits until the screen is dimmed and the overlay has the keyboard.
    async openOverlay(dimmed) {
        this.press("super+ctrl+p");
        await until("the overlay shows", () => this.shows(dimmed));
        await until("the overlay has the keyboard", () =>
            this.desktop.run("xdotool", "getwindowfocus", "getwindowname").toString().startsWith("Orvane overlay"));
    }

    async overlayIsGone() {
        await until("the overlay is gone", () => this.shows(this.ground));
    }

    drag([fromX, fromY], [toX, toY]) {
        this.xdotool("mousemove", fromX, fromY, "mousedown", 1,
                     "mousemove", Math.round((fromX + toX) / 2), Math.round((fromY + toY) / 2),
                     "mousemove", toX, toY, "mouseup", 1);
    }

    /// Draws a region and gives it a label, which may be empty.
    async mark(from, to, label = "") {
        const before = count(this.application.stderr, "orvane: convert viewRect=");
        this.drag(from, to);
        await until("there is a region", () =>
            count(this.application.stderr, "orvane: convert viewRect=") === before + 1);
        if (label) {
            this.xdotool("type", "--delay", 5, label);
        }
        this.press("Return");
    }

    /// Waits for the end of the submission that was begun, and gives the session's id.
    async submitted() {
        const saved = /orvane: session (\S+) saved \((\d+) capture\(s\), (\d+) region\(s\)\)\n/;
        const done = /orvane: submitted \d+ annotation\(s\)\. Clipboard updated\.\n/;
        await until("the session is saved", () => saved.test(this.application.stderr) &&
            done.test(this.application.stderr), 30);
        const [, id] = this.application.stderr.match(saved);
        this.application.stderr = "";
        return id;
    }

    clipboard(format = "UTF8_STRING") {
        return this.desktop.run("xclip", "-selection", "clipboard", "-o", "-t", format);
    }

    sessions() {
        return sessionIds(this.desktop);
    }

    file(id, name) {
        return readFileSync(join(sessionsFolder(this.desktop), id, name));
    }
}
