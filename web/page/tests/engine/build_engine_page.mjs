// Builds a page that has the engine and nothing else:
//   node web/page/tests/engine/build_engine_page.mjs MODULES OUT
import { buildPage } from "../../build.mjs";

const [modules, out] = process.argv.slice(2);
await buildPage(modules, out, {
    html: "tests/engine/page.html", script: "tests/engine/page.ts",
});
