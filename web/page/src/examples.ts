import dropSizes from "../../../examples/patterns/drop_sizes.txt";
import lightInk from "../../../examples/patterns/light_ink.txt";
import oneDrop from "../../../examples/patterns/one_drop.txt";
import percent from "../../../examples/patterns/percent.txt";
import sixInk from "../../../examples/patterns/six_ink.txt";
import twoColours from "../../../examples/patterns/two_colours.txt";
import weights from "../../../examples/patterns/weights.txt";

/** The patterns of docs/patterns.md, in its order. */
export const examples = {
    one_drop: oneDrop,
    drop_sizes: dropSizes,
    weights,
    light_ink: lightInk,
    two_colours: twoColours,
    percent,
    six_ink: sixInk,
} as const;

export type ExampleName = keyof typeof examples;
