// SPDX-License-Identifier: Apache-2.0
#include "pattern.h"

#include "arguments.h"
#include "binding.h"
#include "pattern_inks.h"

namespace py = pybind11;

namespace zvk::Pelkraft::Python {
namespace {

constexpr const char* patternWords =
    R"(Pattern(text, engine='automatic')
--

A dot pattern, which turns steps of in-colours into values of out-inks.

text    the text of the pattern, str or bytes; a str is taken as UTF-8
engine  'automatic' for the same bytes and limits on every machine, those of 'sse'; 'x86' for the
        wider limits of that engine

A pattern never changes, and any number of threads may run it at once. Patterns of equal text and
engine are equal, hash alike and have the same saved record, by which they are pickled too.

PelkraftError: the text breaks a rule of its format; .line and .column tell where, if there is a
place. TypeError: an argument is of another type.)";

constexpr const char* callWords =
    R"(__call__(self, rows, first_row=0, out=None)
--

Apply the pattern to rows of pixels and return the ink values.

rows       an array of uint8, (rows, pixels, in-colours), or (pixels, in-colours) for one row: at
           each pixel the step of each in-colour
first_row  the number of the first of them in the picture, 0 or more
out        the array to write to, (rows, pixels, out-inks) of uint8, or None for a new one

What row number r becomes depends on text, engine and r alone, so a picture may be cut into bands of
rows in any way. Any stride between rows is served, and nothing is copied. Source arrays may be
read-only, and of any subclass but masked ones. out must share no byte with rows. The interpreter's
lock is given back during a run of 32 KiB or more, of both sides together.

PelkraftError: dtype, shape, strides or the number of rows don't fit, out is read-only, or the two
overlap; nothing has been written then. TypeError: no array, or a masked one.)";

constexpr const char* stepInksWords =
    R"(step_inks(self, tone='coverage')
--

The expected ink of each step, as a tuple for each in-colour, for Tones.

tone  'coverage' for what the pattern says, in thousandths of an ink's value: for each alternative of
      a step its share times the values of its inks, all added up, of which a light or grey ink
      counts 0.4 of a full one; 'equal' for equal distances from step to step

A Dither takes inks that begin with 0 and rise, which a pattern's own need not do.)";

constexpr const char* readStepInksWords =
    R"(read_step_inks(self, table)
--

The expected ink of each step by a table, in thousandths, as step_inks returns them.

table  str or bytes with a line for each in-colour and step: the name, the step and its ink between
       commas, "Cyan,1,12.8", in any order. An ink has up to three places after its point. Blank
       lines, and those that begin with #, are passed over

PelkraftError: a line breaks these rules, or one is missing. TypeError: the table is of another
type.)";

py::tuple TopStepsOf(const Pattern& pattern)
{
    const plk_pattern_facts& facts = pattern.Facts();
    py::list steps;
    for (std::int32_t i = 0; i != facts.in_colours; ++i)
        steps.append(facts.top_steps[i]);
    return py::tuple(steps);
}

std::string Show(const Pattern& pattern)
{
    std::string text = "Pattern(" + Repr(pattern.Text());
    if (pattern.Engine() != PLK_ENGINE_AUTOMATIC)
        text += std::string(", engine='") + engineChoices.NameOf(pattern.Engine()) + "'";
    return text + ")";
}

std::unique_ptr<Pattern> MakePattern(const py::object& /*type*/, const py::object& text,
                                     const py::object& engine)
{
    return std::make_unique<Pattern>(ToText(text, "text"),
                                     ToChoice(engine, "engine", engineChoices));
}

std::unique_ptr<Pattern> ReadPattern(const py::object& path, const py::object& engine)
{
    const py::object file = py::module_::import("io").attr("open")(path, "rb");
    const py::object text = file.attr("read")();
    file.attr("close")();
    return MakePattern(py::none(), text, engine);
}

void AddFacts(py::class_<Pattern>& type)
{
    const auto add = [&](const char* name, const auto& get, const char* words) {
        type.def_property_readonly(name, get, words);
    };
    add(
        "in_colours", [](const Pattern& pattern) { return pattern.Names(PLK_IN_COLOURS); },
        "The names of the in-colours, in the order of a pixel's steps.");
    add(
        "out_inks", [](const Pattern& pattern) { return pattern.Names(PLK_OUT_INKS); },
        "The names of the out-inks, in the order of a pixel's values.");
    add("top_steps", &TopStepsOf,
        "The highest step of each in-colour, 255 for one that is listed but not described.");
    add(
        "version", [](const Pattern& pattern) { return pattern.Facts().version; },
        "The version number in the text.");
    add(
        "combinations", [](const Pattern& pattern) { return pattern.Facts().combinations; },
        "The number of ways in which one alternative can be taken of each step.");
    add(
        "field_size", [](const Pattern& pattern) { return pattern.Facts().field_size; },
        "The entries of the random field that pixels draw from, one after the other.");
    add("text", &Pattern::Text, "The text of the pattern.");
    add(
        "engine", [](const Pattern& pattern) { return engineChoices.NameOf(pattern.Engine()); },
        "The engine that was asked for.");
    add("full_ink", &FullInkOf,
        "The highest value that the text gives to an ink, 255 where it gives none.");
}

} // namespace

void AddPattern(py::module_& module)
{
    py::class_<Pattern> type(module, "Pattern", py::is_final(), PlainMetaclass(), patternWords);
    ShowInPackage(type);
    MakeByNew(type, &MakePattern, py::arg("text"), py::arg("engine") = "automatic");
    AddFacts(type);
    type.def("__call__", &Pattern::Run, py::arg("rows"), py::arg("first_row") = 0,
             py::arg("out") = py::none(), callWords);
    type.def_static("from_file", &ReadPattern, py::arg("path"), py::arg("engine") = "automatic",
                    R"(from_file(path, engine='automatic')
--

The pattern whose text stands in a file.

OSError: the file can't be read. Otherwise as for Pattern.)");
    type.def("step_inks", &StepInksOf, py::arg("tone") = "coverage", stepInksWords);
    type.def("read_step_inks", &ReadStepInksOf, py::arg("table"), readStepInksWords);
    KnowByRecord(type, "pelkraft.Pattern");
    type.def("__repr__", &Show);
    module.def("_flat_step", &FlatStepOf, py::arg("inks"));
}

} // namespace zvk::Pelkraft::Python
