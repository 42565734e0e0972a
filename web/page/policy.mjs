// The policy stands in the page itself, and servers may send the same as a header.
export const policy = [
    "default-src 'none'", "script-src 'self' 'wasm-unsafe-eval'", "worker-src 'self'",
    "style-src 'self'", "img-src 'self' blob: data:", "connect-src 'self'", "manifest-src 'self'",
    "base-uri 'none'", "form-action 'none'",
].join("; ");
