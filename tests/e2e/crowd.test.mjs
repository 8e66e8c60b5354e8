// Many agents at once, over HTTP: each call has its answer, and the application goes on and ends as ever.
import assert from "node:assert/strict";
import { after, before, describe, it } from "node:test";
import { withApplication } from "./lib/application.mjs";
import { startDesktop } from "./lib/desktop.mjs";
import { readResult } from "./lib/orvane.mjs";

const ROUNDS = 6;
const REGION = { x: 0, y: 0, width: 1600, height: 1000 };
const CALLS = [
    ["capture_window", { app_name: "Crowd1" }],
    ["capture_region", REGION],
    ["list_windows", {}],
    ["capture_window_region", { app_name: "Crowd2", x: 10, y: 10, width: 200, height: 100 }],
    ["capture_annotated", { app_name: "Crowd1", regions: [] }],
    ["activate_window", { app_name: "Crowd2" }],
    ["capture_diff", { app_name: "Crowd1" }],
];

let desktop;
before(async () => {
    desktop = await startDesktop("--size", "1920x1080");
    desktop.settings({ HasOnboarded: true });
    for (let i = 1; i <= 12; i++) {
        await desktop.openWindow({ className: `Crowd${i}`, position: [40 * i, 30 * i] });
    }
});
after(() => desktop?.stop());

/// One client's calls, one after the other.
async function converse(application, client) {
    for (let round = 0; round < ROUNDS; round++) {
        const [name, args] = CALLS[(client + round) % CALLS.length];
        const reply = await application.post({ jsonrpc: "2.0", id: `${client}/${round}`, method: "tools/call",
                                               params: { name, arguments: args } });
        assert.equal(reply.status, 200);
        const { id, result } = JSON.parse(reply.body);
        assert.equal(id, `${client}/${round}`);
        const { error, text } = readResult(result, name);
        assert.ok(!error, text);
    }
}

describe("a crowd of clients", () => {
    for (const count of [24, 64]) {
        it(`of ${count} is served`, { timeout: 180000 }, () => withApplication(desktop, async (application) => {
            await Promise.all(Array.from({ length: count }, (_, client) => converse(application, client)));
            assert.doesNotMatch(application.stderr, /QSocketNotifier|connection/);
        }));
    }
});
