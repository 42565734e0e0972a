import { App } from "./app.js";

new App().show(document.body);
