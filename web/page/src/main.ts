import { App } from "./app.js";
import { registerServiceWorker } from "./engine/index.js";

new App().show(document.body);
registerServiceWorker();
