// Python's header comes first: it sets macros that the standard's headers look at.
#define PY_SSIZE_T_CLEAN
#include <Python.h>
#define NPY_NO_DEPRECATED_API NPY_1_7_API_VERSION
#include <numpy/arrayobject.h>

#include "benchmarks/peers/entry.h"

#include <memory>
#include <stdexcept>

// A program in Python would call the same, here called from C++: a header around each row, then one
// call.
namespace zvk::Pelkraft::Benchmarks {
namespace {

constexpr OwnRule highByte{"keeps the high byte", 1};
constexpr OwnRule notZero{"takes all but zero", 0, true};

PyObject* packBits = nullptr;
PyObject* unpackBits = nullptr;

struct Release
{
    void operator()(PyObject* object) const { Py_XDECREF(object); }
};
using Object = std::unique_ptr<PyObject, Release>;

// The shape and the byte steps of a row as an array. A step of 0 repeats, a negative one mirrors.
struct View
{
    int dimensions;
    npy_intp counts[3];
    npy_intp steps[3];
    int type = NPY_UINT8;
    npy_intp firstByte = 0;
};

Object Wrap(const View& view, const unsigned char* row)
{
    npy_intp counts[3] = {view.counts[0], view.counts[1], view.counts[2]};
    npy_intp steps[3] = {view.steps[0], view.steps[1], view.steps[2]};
    void* first = const_cast<unsigned char*>(row) + view.firstByte;
    return Object(PyArray_New(&PyArray_Type, view.dimensions, counts, view.type, steps, first, 0,
                              NPY_ARRAY_WRITEABLE, nullptr));
}

PyArrayObject* ArrayOf(const Object& object)
{
    return reinterpret_cast<PyArrayObject*>(object.get());
}

int TypeOf(int bits)
{
    return bits == 16 ? NPY_UINT16 : NPY_UINT8;
}

// Channels and pixels of a row of whole bytes, in this order in either layout.
View ByChannels(const Geometry& geometry, int width)
{
    const npy_intp bytes = geometry.bits / 8;
    const npy_intp channels = geometry.channels;
    const npy_intp pixelStep = geometry.planar ? bytes : bytes * channels;
    const npy_intp channelStep = geometry.planar ? bytes * width : bytes;
    return {2, {channels, width}, {channelStep, pixelStep}, TypeOf(geometry.bits)};
}

void AddCopy(Entries& entries, const char* name, const std::function<View(int width)>& viewSource,
             const std::function<View(int width)>& viewDestination, OwnRule rule = {})
{
    entries.push_back({name,
                       [=](int width) -> RowCall {
                           return [from = viewSource(width), to = viewDestination(width)](
                                      const unsigned char* source, unsigned char* destination) {
                               const Object in = Wrap(from, source);
                               const Object out = Wrap(to, destination);
                               PyArray_CopyInto(ArrayOf(out), ArrayOf(in));
                           };
                       },
                       rule});
}

// Splits, merges and copies: an assignment between views.
void AddFill(Entries& entries, const Job& job)
{
    AddCopy(
        entries, "numpy_copyto", [&job](int width) { return ByChannels(job.source, width); },
        [&job](int width) { return ByChannels(job.destination, width); });
}

// A sample times 257 is its byte twice, so the bytes are copied into pairs.
void AddWiden(Entries& entries, const Job& job)
{
    const auto pairs = [](const Geometry& geometry, int width, bool twice) {
        View view = ByChannels(geometry, width);
        return View{3,
                    {view.counts[0], view.counts[1], 2},
                    {view.steps[0], view.steps[1], twice ? npy_intp{1} : npy_intp{0}}};
    };
    AddCopy(
        entries, "numpy_copyto", [=, &job](int width) { return pairs(job.source, width, false); },
        [=, &job](int width) { return pairs(job.destination, width, true); });
}

void AddNarrow(Entries& entries, const Job& job)
{
    AddCopy(
        entries, "numpy_copyto",
        [&job](int width) {
            View view = ByChannels(job.source, width);
            view.type = NPY_UINT8;
            view.firstByte = 1;
            return view;
        },
        [&job](int width) { return ByChannels(job.destination, width); }, highByte);
}

// Pixels of four bytes are copied as one element.
void AddRepeat(Entries& entries, const Job& job)
{
    const npy_intp bytes = job.source.planar ? 1 : 4;
    const npy_intp rows = job.source.planar ? 4 : 1;
    const int type = job.source.planar ? NPY_UINT8 : NPY_UINT32;
    const npy_intp factor = job.factor;
    AddCopy(
        entries, "numpy_copyto",
        [=](int width) -> View {
            if (factor < 0)
                return {2, {width, 1}, {-bytes, bytes}, type, bytes * (width - 1)};
            return {2, {rows * width, factor}, {bytes, 0}, type};
        },
        [=](int width) -> View {
            const npy_intp copies = factor < 0 ? 1 : factor;
            return {2, {rows * width, copies}, {copies * bytes, bytes}, type};
        });
}

void AddRemap(Entries& entries, const Job& job)
{
    entries.push_back(
        {"numpy_take", [&job](int width) -> RowCall {
             const auto channels = job.destination.channels;
             std::vector<npy_intp> map(job.map, job.map + channels);
             const npy_intp bytes = job.source.bits / 8;
             const View view{
                 2, {width, channels}, {bytes * channels, bytes}, TypeOf(job.source.bits)};
             return [=](const unsigned char* source, unsigned char* destination) {
                 npy_intp count = channels;
                 const Object in = Wrap(view, source);
                 const Object out = Wrap(view, destination);
                 const Object indices(PyArray_SimpleNewFromData(1, &count, NPY_INTP,
                                                                const_cast<npy_intp*>(map.data())));
                 // With any other mode it would go through a buffer.
                 const Object taken(
                     PyArray_TakeFrom(ArrayOf(in), indices.get(), 1, ArrayOf(out), NPY_CLIP));
             };
         }});
}

// A function that gives a new array, which is copied to the row.
void AddFunction(Entries& entries, const char* name, PyObject* function, const Job& job,
                 OwnRule rule)
{
    const bool packs = job.destination.bits < 8;
    entries.push_back(
        {name,
         [=, &job](int width) -> RowCall {
             const std::shared_ptr<PyObject> words(PyDict_New(), Release());
             PyDict_SetItemString(words.get(), "axis", Object(PyLong_FromLong(1)).get());
             if (!packs)
                 PyDict_SetItemString(words.get(), "count", Object(PyLong_FromLong(width)).get());
             const auto planeBytes =
                 static_cast<npy_intp>(CalcPlaneBytes(packs ? job.destination : job.source, width));
             const View packed{2, {job.source.channels, planeBytes}, {planeBytes, 1}};
             const View samples = ByChannels(packs ? job.source : job.destination, width);
             return [=](const unsigned char* source, unsigned char* destination) {
                 const Object in = Wrap(packs ? samples : packed, source);
                 const Object out = Wrap(packs ? packed : samples, destination);
                 const Object arguments(PyTuple_Pack(1, in.get()));
                 const Object result(PyObject_Call(function, arguments.get(), words.get()));
                 PyArray_CopyInto(ArrayOf(out), ArrayOf(result));
             };
         },
         rule});
}

void Add(Entries& entries, const Job& job)
{
    if (IsSplit(job) || IsMerge(job) || IsCopy(job))
        AddFill(entries, job);
    else if (job.source.bits == 8 && job.destination.bits == 16)
        AddWiden(entries, job);
    else if (job.source.bits == 16 && job.destination.bits == 8)
        AddNarrow(entries, job);
    else if (job.source.bits == 8 && job.destination.bits == 1)
        AddFunction(entries, "numpy_packbits", packBits, job, notZero);
    else if (job.source.bits == 1 && job.destination.bits == 8)
        AddFunction(entries, "numpy_unpackbits", unpackBits, job, {});
    else if (job.operation == Operation::Repeat && job.source.bits == 8)
        AddRepeat(entries, job);
    else if (job.operation == Operation::Remap && job.destination.channels == 4)
        AddRemap(entries, job);
}

// The interpreter finds its own modules by its program's name.
void StartInterpreter()
{
    PyConfig config;
    PyConfig_InitPythonConfig(&config);
    config.install_signal_handlers = 0;
    PyConfig_SetBytesString(&config, &config.program_name, PELKRAFT_PYTHON);
    const PyStatus status = Py_InitializeFromConfig(&config);
    PyConfig_Clear(&config);
    if (PyStatus_Exception(status) != 0)
        throw std::runtime_error("the Python interpreter doesn't start");
}

} // namespace

Peer StartNumpy()
{
    StartInterpreter();
    const Object numpy(PyImport_ImportModule("numpy"));
    if (numpy == nullptr || _import_array() < 0)
        throw std::runtime_error("the Python interpreter finds no NumPy");
    packBits = PyObject_GetAttrString(numpy.get(), "packbits");
    unpackBits = PyObject_GetAttrString(numpy.get(), "unpackbits");
    const Object version(PyObject_GetAttrString(numpy.get(), "__version__"));
    return {std::string("NumPy ") + PyUnicode_AsUTF8(version.get()), Add};
}

} // namespace zvk::Pelkraft::Benchmarks
