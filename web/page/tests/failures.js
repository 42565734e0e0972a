// All that goes wrong in a page unseen: errors that nobody caught, errors on the console, and what
// the page's policy has stopped, with the place that asked for it. The policy stands in the page and
// in the header, so the browser itself tells of one violation twice.
export async function listenForFailures(page) {
    const failures = [];
    page.on("pageerror", (error) => failures.push(error.stack));
    page.on("console", (message) => {
        if (message.type() === "error") {
            failures.push(message.text());
        }
    });
    await page.addInitScript(() => {
        document.addEventListener("securitypolicyviolation", (event) => {
            console.error(`the policy stopped ${event.blockedURI} by ${event.effectiveDirective}, ` +
                `asked for in ${event.sourceFile}:${event.lineNumber}`);
        });
    });
    return failures;
}
