// Takes the picture of the page that README.md and docs/web.md show:
//   node web/page/picture.mjs OUT.png
// The page stands in build/web; PELKRAFT_CHROMIUM names the browser.
import { chromium } from "playwright-core";

import { serve } from "./serve.mjs";

const [out] = process.argv.slice(2);
const server = await serve("build/web");
const browser = await chromium.launch({
    executablePath: process.env.PELKRAFT_CHROMIUM ?? "/usr/bin/chromium",
    args: ["--no-sandbox", "--disable-gpu", "--no-first-run"],
});
try {
    const page = await browser.newPage({
        viewport: { width: 1280, height: 780 }, reducedMotion: "reduce",
    });
    await page.goto(`http://127.0.0.1:${server.address().port}/`);
    await page.getByText("Examples", { exact: true }).click();
    await page.getByRole("link", { name: "A second colour" }).click();
    await page.getByText("Nothing is wrong").waitFor();
    await page.getByRole("tab", { name: "Dots" }).click();
    await page.getByRole("img", { name: "dots from" }).waitFor();
    await page.screenshot({ path: out });
} finally {
    await browser.close();
    server.close();
}
