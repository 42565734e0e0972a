// A program that asks for the environment sees that of the Node.js that runs it.
Module["preRun"] = () => {
    if (typeof ENV !== "undefined") {
        Object.assign(ENV, process.env);
    }
};
