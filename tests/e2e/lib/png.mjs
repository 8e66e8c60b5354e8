// Pixels of the two picture formats the tests meet. A picture is { width, height, at(x, y) } with at() giving
// "#rrggbb", or "#rrggbbaa" where a PNG has an alpha channel and the pixel is not opaque.
import assert from "node:assert/strict";
import { inflateSync } from "node:zlib";

const SIGNATURE = Buffer.from([0x89, 0x50, 0x4e, 0x47, 0x0d, 0x0a, 0x1a, 0x0a]);
const hex = (value) => value.toString(16).padStart(2, "0");

/// Decodes a PNG of 8 bits a channel, RGB or RGBA (ISO/IEC 15948), and fails the test for anything else.
export function decodePng(bytes) {
    assert.ok(bytes.subarray(0, 8).equals(SIGNATURE), "no PNG signature");
    let offset = 8;
    let header;
    let ended = false;
    const parts = [];
    while (offset < bytes.length) {
        const length = bytes.readUInt32BE(offset);
        const type = bytes.toString("latin1", offset + 4, offset + 8);
        const body = bytes.subarray(offset + 8, offset + 8 + length);
        assert.equal(body.length, length, `chunk ${type} is cut off`);
        if (type === "IHDR") {
            header = { width: body.readUInt32BE(0), height: body.readUInt32BE(4), depth: body[8], colour: body[9],
                       interlace: body[12] };
        } else if (type === "IDAT") {
            parts.push(body);
        } else if (type === "IEND") {
            ended = true;
        }
        offset += length + 12;
    }
    assert.ok(header && ended, "the PNG has no beginning or no end");
    assert.equal(header.depth, 8);
    assert.ok(header.colour === 2 || header.colour === 6, `colour type ${header.colour}`);
    assert.equal(header.interlace, 0);
    const channels = header.colour === 2 ? 3 : 4;
    const pixels = unfilter(inflateSync(Buffer.concat(parts)), header.width * channels, header.height, channels);
    return {
        width: header.width,
        height: header.height,
        at(x, y) {
            assert.ok(x >= 0 && y >= 0 && x < header.width && y < header.height, `(${x}, ${y}) is outside`);
            const place = (y * header.width + x) * channels;
            const colour = `#${hex(pixels[place])}${hex(pixels[place + 1])}${hex(pixels[place + 2])}`;
            return channels === 4 && pixels[place + 3] !== 255 ? colour + hex(pixels[place + 3]) : colour;
        },
    };
}

function unfilter(data, stride, height, channels) {
    assert.equal(data.length, (stride + 1) * height, "wrong amount of pixels");
    const out = Buffer.alloc(stride * height);
    for (let y = 0; y < height; y++) {
        const filter = data[y * (stride + 1)];
        const row = data.subarray(y * (stride + 1) + 1, (y + 1) * (stride + 1));
        for (let i = 0; i < stride; i++) {
            const left = i >= channels ? out[y * stride + i - channels] : 0;
            const up = y > 0 ? out[(y - 1) * stride + i] : 0;
            const corner = y > 0 && i >= channels ? out[(y - 1) * stride + i - channels] : 0;
            out[y * stride + i] = row[i] + predicted(filter, left, up, corner);
        }
    }
    return out;
}

function predicted(filter, left, up, corner) {
    switch (filter) {
    case 0: return 0;
    case 1: return left;
    case 2: return up;
    case 3: return (left + up) >> 1;
    case 4: {
        const estimate = left + up - corner;
        const [a, b, c] = [left, up, corner].map((value) => Math.abs(estimate - value));
        return a <= b && a <= c ? left : b <= c ? up : corner;
    }
    default: throw new assert.AssertionError({ message: `filter ${filter}` });
    }
}

/// Decodes what xwd writes for a true-colour window of 32 bits a pixel.
export function decodeXwd(bytes) {
    const field = (index) => bytes.readUInt32BE(index * 4);
    const [headerSize, width, height, byteOrder, bitsPerPixel, bytesPerLine, colours] =
        [0, 4, 5, 7, 11, 12, 19].map(field);
    assert.equal(bitsPerPixel, 32);
    assert.equal(byteOrder, 0);
    const start = headerSize + colours * 12;
    return {
        width,
        height,
        at(x, y) {
            const place = start + y * bytesPerLine + x * 4;
            return `#${hex(bytes[place + 2])}${hex(bytes[place + 1])}${hex(bytes[place])}`;
        },
    };
}

/// Decodes what root-picture writes.
export function decodeRoot(bytes) {
    const [width, height] = [bytes.readUInt32LE(0), bytes.readUInt32LE(4)];
    return {
        width,
        height,
        at(x, y) {
            const place = 8 + (y * width + x) * 4;
            return `#${hex(bytes[place + 2])}${hex(bytes[place + 1])}${hex(bytes[place])}`;
        },
    };
}

/// Red, green and blue of "#rrggbb".
export const channels = (colour) => [1, 3, 5].map((start) => parseInt(colour.slice(start, start + 2), 16));

/// What a colour that covers by a share from 0 to 1 makes of the one below it.
export const blend = (top, ground, share) => "#" + channels(top).map((value, i) =>
    hex(Math.round(share * value + (1 - share) * channels(ground)[i]))).join("");

/// Whether two colours differ by no more than rounding does.
export const nearly = (one, other) => channels(one).every((value, i) => Math.abs(value - channels(other)[i]) <= 2);

/// The part of a picture that begins at (x, y).
export function crop(picture, x, y, width, height) {
    assert.ok(x >= 0 && y >= 0 && x + width <= picture.width && y + height <= picture.height,
              `${width}x${height} at (${x}, ${y}) is not inside ${picture.width}x${picture.height}`);
    return { width, height, at: (column, row) => picture.at(x + column, y + row) };
}

/// How many pixels have which colour.
export function colours(picture) {
    const counts = new Map();
    for (let y = 0; y < picture.height; y++) {
        for (let x = 0; x < picture.width; x++) {
            const colour = picture.at(x, y);
            counts.set(colour, (counts.get(colour) ?? 0) + 1);
        }
    }
    return counts;
}

export function assertSamePixels(actual, expected, what) {
    assert.deepEqual([actual.width, actual.height], [expected.width, expected.height], `size of ${what}`);
    for (let y = 0; y < actual.height; y++) {
        for (let x = 0; x < actual.width; x++) {
            if (actual.at(x, y) !== expected.at(x, y)) {
                assert.fail(`${what}: (${x}, ${y}) is ${actual.at(x, y)} and not ${expected.at(x, y)}`);
            }
        }
    }
}

export function samePixels(one, other) {
    try {
        assertSamePixels(one, other, "");
        return true;
    } catch {
        return false;
    }
}
