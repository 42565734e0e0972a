// This simulates dot patterns pixel by pixel from the definition, and uses nothing of the module.
//
// A pattern is { version, seed, outInks, inColors }; an in-colour is { inks, lines }, where lines
// has by step { weights, positions, values }.

export function patternText({ version, seed, outInks, inColors }) {
    const names = (kind, count) => Array.from({ length: count }, (_, i) => kind + i).join(" ");
    const blocks = inColors.map(({ inks, lines }, i) => {
        const values = Object.entries(lines).map(([step, { weights, positions, values }]) => {
            const entries = weights.map((_, j) => `${positions[j]}-${values[j]}`);
            return `${step} ${weights.join(":")} ${entries.join(" ")}`;
        });
        return `BEGIN_IN_COLOR colour${i}
BEGIN_INKS ${inks.map((ink) => `ink${ink}`).join(" ")} END_INKS
BEGIN_VALUES
${values.join("\n")}
END_VALUES
END_IN_COLOR
`;
    });
    return `DotWeavePattern
VERSION ${version}
RANDOM_SEED ${seed}
BEGIN_OUT_INKS ${names("ink", outInks)} END_OUT_INKS
BEGIN_IN_COLORS ${names("colour", inColors.length)} END_IN_COLORS
${blocks.join("")}`;
}

function smallRandom(seed) {
    let state = seed >>> 0;
    return () => {
        state = (state * 214013 + 2531011) % 2 ** 32;
        return Math.floor(state / 65536) % 32768;
    };
}

function twister(seed) {
    const words = new Uint32Array(624);
    words[0] = seed;
    for (let i = 1; i < 624; ++i) {
        words[i] = Math.imul(1812433253, words[i - 1] ^ (words[i - 1] >>> 30)) + i;
    }
    let next = 624;
    return () => {
        if (next === 624) {
            for (let i = 0; i < 624; ++i) {
                const joined = (words[i] & 0x80000000) | (words[(i + 1) % 624] & 0x7fffffff);
                words[i] = words[(i + 397) % 624] ^ (joined >>> 1);
                if (joined & 1) {
                    words[i] ^= 0x9908b0df;
                }
            }
            next = 0;
        }
        let y = words[next++];
        y ^= y >>> 11;
        y ^= (y << 7) & 0x9d2c5680;
        y ^= (y << 15) & 0xefc60000;
        return (y ^ (y >>> 18)) >>> 0;
    };
}

function shuffle(field, seed) {
    const draw = twister(seed);
    const mask = 0xffffffff;
    for (let t = 1; t < field.length; ++t) {
        const n = t + 1;
        let drawn;
        do {
            drawn = draw();
        } while (Math.floor(drawn / n) >= Math.floor(mask / n) && mask % n !== t);
        [field[t], field[drawn % n]] = [field[drawn % n], field[t]];
    }
}

const jumps = (() => {
    const draw = smallRandom(4711);
    return Array.from({ length: 65536 }, () => draw() * 2);
})();

const sum = (numbers) => numbers.reduce((total, number) => total + number, 0);
const divisor = (a, b) => (b === 0 ? a : divisor(b, a % b));

// Steps of an in-colour with the same weights draw together.
function drawnTogether({ lines }) {
    const drawn = [];
    const steps = Object.keys(lines);
    const all = steps.map((step) => lines[step].weights);
    for (const weights of steps.length > 0 && !steps.includes("0") ? [[1], ...all] : all) {
        if (!drawn.some((known) => String(known) === String(weights))) {
            drawn.push(weights);
        }
    }
    return drawn;
}

export class NaivePattern {
    constructor(pattern) {
        this.pattern = pattern;
        this.drawn = pattern.inColors.map(drawnTogether);
        const counts = this.drawn.flat().map((weights) => weights.length);
        this.combinations = counts.reduce((product, count) => product * count, 1);
        if (this.combinations > 1) {
            this.field = pattern.version < 3 ? this.firstField() : this.secondField();
        }
        this.row = 0;
        this.position = jumps[0];
    }

    share(combination) {
        let rest = combination;
        let [numerator, denominator] = [1, 1];
        for (const weights of this.drawn.flat()) {
            numerator *= weights[rest % weights.length];
            denominator *= sum(weights);
            rest = Math.floor(rest / weights.length);
            const common = divisor(numerator, denominator);
            numerator /= common;
            denominator /= common;
        }
        return { numerator, denominator };
    }

    shares() {
        return Array.from({ length: this.combinations }, (_, c) => this.share(c));
    }

    firstField() {
        const shares = this.shares();
        const total = shares.reduce((product, { denominator }) =>
            (product * denominator) / divisor(product, denominator), 1);
        const draw = smallRandom(this.pattern.seed);
        return Array.from({ length: 65536 }, () => {
            let rest = draw() % total;
            let chosen = 0;
            for (;;) {
                const { numerator, denominator } = shares[chosen];
                const part = (total / denominator) * numerator;
                if (rest < part) {
                    return chosen;
                }
                rest -= part;
                ++chosen;
            }
        });
    }

    secondField() {
        const shares = this.shares();
        const highest = Math.max(1, ...shares.map(({ denominator }) => denominator));
        const times = Math.floor(100000 / highest) + 1;
        const field = shares.flatMap(({ numerator, denominator }, combination) =>
            Array(Math.floor((numerator * highest) / denominator) * times).fill(combination));
        field.push(...Array(times * highest - field.length).fill(0));
        shuffle(field, this.pattern.seed);
        return field;
    }

    alternative(combination, inColor, weights) {
        let rest = combination;
        for (let i = 0; i <= inColor; ++i) {
            for (const known of this.drawn[i]) {
                if (i === inColor && String(known) === String(weights)) {
                    return rest % known.length;
                }
                rest = Math.floor(rest / known.length);
            }
        }
        return 0;
    }

    inkValue(combination, pixel, ink) {
        const inColor = this.pattern.inColors.findIndex(({ inks }) => inks.includes(ink));
        if (inColor === -1) {
            return 0;
        }
        const { inks, lines } = this.pattern.inColors[inColor];
        const top = Math.max(...Object.keys(lines).map(Number));
        const line = lines[Math.min(pixel[inColor], top)];
        if (line === undefined) {
            return 0;
        }
        const chosen = this.alternative(combination, inColor, line.weights);
        return line.positions[chosen] === inks.indexOf(ink) ? line.values[chosen] & 255 : 0;
    }

    apply(source) {
        const { inColors, outInks } = this.pattern;
        const target = [];
        for (let at = 0; at < source.length; at += inColors.length) {
            let combination = 0;
            if (this.field !== undefined) {
                combination = this.field[this.position % this.field.length];
                ++this.position;
            }
            const pixel = source.subarray(at, at + inColors.length);
            for (let ink = 0; ink < outInks; ++ink) {
                target.push(this.inkValue(combination, pixel, ink));
            }
        }
        this.row += 1;
        this.position = jumps[this.row % 65536];
        return Uint8Array.from(target);
    }

    // The portable engine begins one place later after it.
    reset(oneLater) {
        this.row = 0;
        this.position = jumps[0] + (oneLater ? 1 : 0);
    }
}
