// A program sees the environment of the Node.js that runs it.
Module["preRun"] = () => Object.assign(ENV, process.env);
