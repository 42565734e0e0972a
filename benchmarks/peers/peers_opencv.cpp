#include "benchmarks/peers/entry.h"

#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>

#include <cstdlib>

namespace zvk::Pelkraft::Benchmarks {
namespace {

constexpr OwnRule nearest{"rounds to the nearest", 1};

int TypeOf(int bits, int channels)
{
    return CV_MAKETYPE(bits == 16 ? CV_16U : CV_8U, channels);
}

// A header around a row, which the functions called here write or only read.
cv::Mat RowOf(const unsigned char* row, int width, int bits, int channels)
{
    return cv::Mat(1, width, TypeOf(bits, channels), const_cast<unsigned char*>(row));
}

// Each plane has a header, in memory that is kept from row to row.
class Planes
{
public:
    Planes(const Geometry& newGeometry, int newWidth) : geometry(newGeometry), width(newWidth) {}

    cv::Mat* Wrap(const unsigned char* row)
    {
        headers.clear();
        const std::size_t planeBytes = CalcPlaneBytes(geometry, width);
        for (int c = 0; c != geometry.channels; ++c)
            headers.push_back(
                RowOf(row + static_cast<std::size_t>(c) * planeBytes, width, geometry.bits, 1));
        return headers.data();
    }

private:
    Geometry geometry;
    int width;
    std::vector<cv::Mat> headers;
};

std::vector<int> ChannelPairs(const Job& job)
{
    std::vector<int> pairs;
    for (int c = 0; c != job.destination.channels; ++c) {
        pairs.push_back(job.map != nullptr ? job.map[c] : c);
        pairs.push_back(c);
    }
    return pairs;
}

void AddSplit(Entries& entries, const Job& job)
{
    const Geometry from = job.source;
    const Geometry to = job.destination;
    entries.push_back({"opencv_split", [=](int width) -> RowCall {
                           return
                               [=, planes = Planes(to, width)](const unsigned char* source,
                                                               unsigned char* destination) mutable {
                                   cv::split(RowOf(source, width, from.bits, from.channels),
                                             planes.Wrap(destination));
                               };
                       }});
    entries.push_back(
        {"opencv_mixChannels", [=, &job](int width) -> RowCall {
             return [=, pairs = ChannelPairs(job), planes = Planes(to, width)](
                        const unsigned char* source, unsigned char* destination) mutable {
                 const cv::Mat in = RowOf(source, width, from.bits, from.channels);
                 const auto count = static_cast<std::size_t>(to.channels);
                 cv::mixChannels(&in, 1, planes.Wrap(destination), count, pairs.data(), count);
             };
         }});
}

void AddMerge(Entries& entries, const Job& job)
{
    const Geometry from = job.source;
    const Geometry to = job.destination;
    const auto count = static_cast<std::size_t>(from.channels);
    entries.push_back({"opencv_merge", [=](int width) -> RowCall {
                           return [=, planes =
                                          Planes(from, width)](const unsigned char* source,
                                                               unsigned char* destination) mutable {
                               cv::Mat out = RowOf(destination, width, to.bits, to.channels);
                               cv::merge(planes.Wrap(source), count, out);
                           };
                       }});
    entries.push_back(
        {"opencv_mixChannels", [=, &job](int width) -> RowCall {
             return [=, pairs = ChannelPairs(job), planes = Planes(from, width)](
                        const unsigned char* source, unsigned char* destination) mutable {
                 cv::Mat out = RowOf(destination, width, to.bits, to.channels);
                 cv::mixChannels(planes.Wrap(source), count, &out, 1, pairs.data(), count);
             };
         }});
}

// A sample times 257 is its byte beside itself, and so a merge of the row with itself.
void MergeWithItself(const unsigned char* row, int samples, unsigned char* destination)
{
    const cv::Mat in[] = {RowOf(row, samples, 8, 1), RowOf(row, samples, 8, 1)};
    cv::Mat out = RowOf(destination, samples, 8, 2);
    cv::merge(in, 2, out);
}

void AddWiden(Entries& entries)
{
    entries.push_back({"opencv_convertTo", [](int width) -> RowCall {
                           return [=](const unsigned char* source, unsigned char* destination) {
                               cv::Mat out = RowOf(destination, width, 16, 4);
                               RowOf(source, width, 8, 4).convertTo(out, CV_16U, 257);
                           };
                       }});
    entries.push_back({"opencv_merge_self", [](int width) -> RowCall {
                           return [=](const unsigned char* source, unsigned char* destination) {
                               MergeWithItself(source, 4 * width, destination);
                           };
                       }});
}

void AddNarrow(Entries& entries)
{
    entries.push_back({"opencv_convertTo",
                       [](int width) -> RowCall {
                           return [=](const unsigned char* source, unsigned char* destination) {
                               cv::Mat out = RowOf(destination, width, 8, 4);
                               RowOf(source, width, 16, 4).convertTo(out, CV_8U, 1 / 257.0);
                           };
                       },
                       nearest});
}

// Two calls through a row between them.
void AddSplitWithDepth(Entries& entries, const Job& job)
{
    if (job.destination.bits == 16)
        entries.push_back({"opencv_split+merge_self", [](int width) -> RowCall {
                               return [=, between = cv::Mat(1, 4 * width, CV_8U),
                                       planes = Planes({4, 8, true}, width)](
                                          const unsigned char* source,
                                          unsigned char* destination) mutable {
                                   cv::split(RowOf(source, width, 8, 4), planes.Wrap(between.data));
                                   MergeWithItself(between.data, 4 * width, destination);
                               };
                           }});
    else
        entries.push_back({"opencv_convertTo+split",
                           [](int width) -> RowCall {
                               return [=, between = cv::Mat(1, width, CV_8UC4),
                                       planes = Planes({4, 8, true}, width)](
                                          const unsigned char* source,
                                          unsigned char* destination) mutable {
                                   RowOf(source, width, 16, 4).convertTo(between, CV_8U, 1 / 257.0);
                                   cv::split(between, planes.Wrap(destination));
                               };
                           },
                           nearest});
}

void AddRemap(Entries& entries, const Job& job)
{
    const Geometry from = job.source;
    const Geometry to = job.destination;
    entries.push_back({"opencv_mixChannels", [=, &job](int width) -> RowCall {
                           return [=, pairs = ChannelPairs(job)](const unsigned char* source,
                                                                 unsigned char* destination) {
                               const cv::Mat in = RowOf(source, width, from.bits, from.channels);
                               cv::Mat out = RowOf(destination, width, to.bits, to.channels);
                               cv::mixChannels(&in, 1, &out, 1, pairs.data(),
                                               static_cast<std::size_t>(to.channels));
                           };
                       }});
    if (to.channels == 4)
        entries.push_back({"opencv_cvtColor", [=](int width) -> RowCall {
                               return [=](const unsigned char* source, unsigned char* destination) {
                                   cv::Mat out = RowOf(destination, width, to.bits, 4);
                                   cv::cvtColor(RowOf(source, width, from.bits, 4), out,
                                                cv::COLOR_RGBA2BGRA);
                               };
                           }});
}

void AddMirror(Entries& entries)
{
    entries.push_back({"opencv_flip", [](int width) -> RowCall {
                           return [=](const unsigned char* source, unsigned char* destination) {
                               cv::Mat out = RowOf(destination, width, 8, 4);
                               cv::flip(RowOf(source, width, 8, 4), out, 1);
                           };
                       }});
}

// Four planes are one row of pixels of one sample, here as for the plain loop.
void AddRepeat(Entries& entries, const Job& job)
{
    const int factor = job.factor;
    const int channels = job.source.planar ? 1 : 4;
    const int rows = job.source.planar ? 4 : 1;
    entries.push_back({"opencv_resize_nearest", [=](int width) -> RowCall {
                           return [=](const unsigned char* source, unsigned char* destination) {
                               cv::Mat out = RowOf(destination, rows * width * factor, 8, channels);
                               cv::resize(RowOf(source, rows * width, 8, channels), out, out.size(),
                                          0, 0, cv::INTER_NEAREST);
                           };
                       }});
    // A repeat is a merge of the row with itself, where a pixel is taken as one element.
    const int depth = job.source.planar ? CV_8U : CV_32S;
    entries.push_back(
        {"opencv_merge_self", [=](int width) -> RowCall {
             return [=](const unsigned char* source, unsigned char* destination) {
                 const cv::Mat one(1, rows * width, depth, const_cast<unsigned char*>(source));
                 const cv::Mat in[] = {one, one, one, one};
                 cv::Mat out(1, rows * width, CV_MAKETYPE(depth, factor), destination);
                 cv::merge(in, static_cast<std::size_t>(factor), out);
             };
         }});
}

void AddCopy(Entries& entries)
{
    entries.push_back({"opencv_copyTo", [](int width) -> RowCall {
                           return [=](const unsigned char* source, unsigned char* destination) {
                               cv::Mat out = RowOf(destination, width, 8, 4);
                               RowOf(source, width, 8, 4).copyTo(out);
                           };
                       }});
}

void Add(Entries& entries, const Job& job)
{
    if (IsSplit(job))
        AddSplit(entries, job);
    else if (IsMerge(job))
        AddMerge(entries, job);
    else if (IsCalled(job, "widen_4x8"))
        AddWiden(entries);
    else if (IsCalled(job, "narrow_4x16"))
        AddNarrow(entries);
    else if (IsCalled(job, "split_widen_4x8") || IsCalled(job, "split_narrow_4x16"))
        AddSplitWithDepth(entries, job);
    else if (job.operation == Operation::Remap)
        AddRemap(entries, job);
    else if (IsCalled(job, "mirror_4x8"))
        AddMirror(entries);
    else if (job.operation == Operation::Repeat && job.factor > 1)
        AddRepeat(entries, job);
    else if (IsCopy(job) && job.operation == Operation::Fill)
        AddCopy(entries);
}

} // namespace

Peer StartOpenCv()
{
    cv::setNumThreads(1);
    return {std::string("OpenCV ") + CV_VERSION, Add};
}

} // namespace zvk::Pelkraft::Benchmarks
