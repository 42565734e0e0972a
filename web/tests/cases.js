import badInputCases from "./bad_input_cases.js";
import changingDataCases from "./changing_data_cases.js";
import memoryCases from "./memory_cases.js";
import patternCases from "./pattern_cases.js";
import realmCases from "./realm_cases.js";
import reportCases from "./report_cases.js";
import rowCases from "./row_cases.js";

// A case stands by the words of what it promises. Each gets { load, version, address }, where
// load() gives a library of its own, and the address is that of the WebAssembly file.
export default {
    ...rowCases, ...patternCases, ...reportCases, ...badInputCases, ...memoryCases,
    ...changingDataCases, ...realmCases,
};
