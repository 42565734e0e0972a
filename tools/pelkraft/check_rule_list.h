#pragma once

#include "tools/pelkraft/check_rules.h"

namespace zvk::Pelkraft::Client {

// Rules about the names and numbers of inks, and about what their samples mean.
void CheckInkNames(const CheckedPage& page, const CheckedPage& first, CheckFindings& findings);
void CheckNumberOfInks(const CheckedPage& page, const CheckedPage& first, CheckFindings& findings);
void CheckInkSet(const CheckedPage& page, const CheckedPage& first, CheckFindings& findings);
void CheckDuplicates(const CheckedPage& page, const CheckedPage& first, CheckFindings& findings);
void CheckSpelling(const CheckedPage& page, const CheckedPage& first, CheckFindings& findings);
void CheckDotRange(const CheckedPage& page, const CheckedPage& first, CheckFindings& findings);
void CheckPolarity(const CheckedPage& page, const CheckedPage& first, CheckFindings& findings);

// Rules about everything else.
void CheckExtraSamples(const CheckedPage& page, const CheckedPage& first, CheckFindings& findings);
void CheckProfile(const CheckedPage& page, const CheckedPage& first, CheckFindings& findings);
void CheckResolution(const CheckedPage& page, const CheckedPage& first, CheckFindings& findings);
void CheckSquarePixels(const CheckedPage& page, const CheckedPage& first, CheckFindings& findings);
void CheckLikelihood(const CheckedPage& page, const CheckedPage& first, CheckFindings& findings);
void CheckOrientation(const CheckedPage& page, const CheckedPage& first, CheckFindings& findings);
void CheckTruncation(const CheckedPage& page, const CheckedPage& first, CheckFindings& findings);
void CheckByteCounts(const CheckedPage& page, const CheckedPage& first, CheckFindings& findings);

} // namespace zvk::Pelkraft::Client
