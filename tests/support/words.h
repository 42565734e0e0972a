#pragma once

// The words of each refusal of a row, letter for letter.
namespace zvk::Pelkraft::TestSupport::Words {

constexpr const char* depth = "zvk::Pelkraft::ImageRowFormat unsupported bit depth";
constexpr const char* width = "zvk::Pelkraft::ImageRowFormat invalid width";
constexpr const char* channelCount = "zvk::Pelkraft::ImageRowFormat invalid channel count";
constexpr const char* oneOption = "zvk::Pelkraft::Convert only one option is allowed";
constexpr const char* unsupported = "zvk::Pelkraft::Convert unsupported conversion";
constexpr const char* to16 = "zvk::Pelkraft::Convert unsupported conversion to 16 bit";
constexpr const char* from16 = "zvk::Pelkraft::Convert unsupported conversion from 16 bit";
constexpr const char* packer =
    "zvk::Pelkraft::ChunkConvertFacility::Create_Packer unsupported format";
constexpr const char* unpacker =
    "zvk::Pelkraft::ChunkConvertFacility::Create_Unpacker unsupported format";
constexpr const char* fill = "zvk::Pelkraft::ImageRow::FillFrom unsupported conversion";
constexpr const char* remap = "zvk::Pelkraft::ImageRow::FillFromWithRemap unsupported conversion";
constexpr const char* repeat =
    "zvk::Pelkraft::ImageRow::FillFromWithPixelRepeat unsupported conversion";
constexpr const char* noPlanes =
    "zvk::Pelkraft::ImageRow Invalid operation: interleaved data has no planes";
constexpr const char* noRelocation =
    "zvk::Pelkraft::ConversionPortal memory allocation failed for relocation buffer";

} // namespace zvk::Pelkraft::TestSupport::Words
