/** A share in percent, with no more places than say something. */
export function percent(share: number, places = 2): string {
    return `${Number((100 * share).toFixed(places))} %`;
}

export function rounded(number: number, places = 2): string {
    return String(Number(number.toFixed(places)));
}
