const mebi = 1 << 20;

/**
 * The page takes less than 256 MiB: a picture stands in the page once; what is sent to the worker,
 * what comes back, and the worker's own memory come on top of it.
 */
export const limits = {
    /** A pattern text, as for the program. */
    textBytes: mebi,
    /** A file with a picture. */
    fileBytes: 48 * mebi,
    /** All samples of a picture. */
    pictureBytes: 24 * mebi,
    /** Dots that are shown at once. */
    dots: 32 * mebi,
    /** Pixels that are shown or saved at once, four bytes each. */
    shownPixels: 6 * mebi,
} as const;
