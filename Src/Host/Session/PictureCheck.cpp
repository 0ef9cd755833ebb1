// Takes a picture and compares it with the one that was kept; see PictureCheck.h.
#include "PictureCheck.h"

#include "Runner.h"
#include "Values.h"

#include "OpenGL/Context.h"
#include "Screen/Comparison.h"
#include "Screen/PngFile.h"

#include <array>
#include <cstdio>
#include <filesystem>
#include <stdexcept>
#include <system_error>

namespace host {
namespace {

namespace fs = std::filesystem;

constexpr const char *kAdvice = "; --accept writes what is shown now";

std::string SizeOf(const Image &image) { return std::to_string(image.width) + "x" + std::to_string(image.height); }

// The files that a failure leaves for a reader, beside the picture.
struct Evidence {
    explicit Evidence(const std::string &file) {
        const fs::path picture = file;
        actual = fs::path(picture).replace_extension(".actual.png").string();
        difference = fs::path(picture).replace_extension(".difference.png").string();
    }

    // Evidence of an earlier failure would mislead.
    void Remove() const {
        std::error_code error;
        fs::remove(actual, error);
        fs::remove(difference, error);
    }

    std::string actual;
    std::string difference;
};

// Writes what was seen. Returns the names of the files, or why they could not be written.
std::string Keep(const Evidence &evidence, const Image &seen, const Image *marked) {
    evidence.Remove();
    try {
        WritePng(seen, evidence.actual);
        if (!marked)
            return evidence.actual;
        WritePng(*marked, evidence.difference);
        return evidence.actual + " and " + evidence.difference;
    } catch (const std::runtime_error &error) {
        return error.what();
    }
}

std::string Counted(const Comparison &found, const Tolerance &allowed) {
    std::array<char, 200> text{};
    const auto all = static_cast<double>(found.marked.pixels.size());
    std::snprintf(text.data(), text.size(),
                  "%d pixels (%.3f%%) differ by more than %d, the greatest difference is %d; allowed are %g%%",
                  found.different, found.different * 100 / all, allowed.channel, found.greatest, allowed.percent);
    return text.data();
}

Outcome Accept(const Image &seen, const std::string &file) {
    WritePng(seen, file);
    std::printf("%s was written\n", file.c_str());
    std::fflush(stdout);
    return {true, "accepted"};
}

Outcome CompareWith(const std::string &file, const Image &seen, const Tolerance &allowed, bool wantsEqual) {
    const Image wanted = ReadPng(file);
    const Evidence evidence(file);
    if (wanted.width != seen.width || wanted.height != seen.height) {
        const std::string sizes = "the screen is " + SizeOf(seen) + ", the picture " + SizeOf(wanted);
        return {false, wantsEqual ? sizes + ": see " + Keep(evidence, seen, nullptr) + kAdvice : sizes};
    }
    const Comparison found = Compare(wanted, seen, allowed.channel);
    const bool isEqual = found.different <= static_cast<double>(seen.pixels.size()) * allowed.percent / 100;
    std::string text = Counted(found, allowed);
    if (!wantsEqual)
        return {isEqual, text};
    if (isEqual)
        evidence.Remove();
    else
        text += ": see " + Keep(evidence, seen, &found.marked) + kAdvice;
    return {isEqual, text};
}

} // namespace

std::optional<Tolerance> ReadTolerance(std::string_view text) {
    constexpr int kMostOfChannel = 255;
    constexpr double kAll = 100;
    Tolerance read;
    const std::size_t comma = text.find(',');
    const auto channel = ReadInteger(text.substr(0, comma));
    if (!channel || *channel < 0 || *channel > kMostOfChannel)
        return std::nullopt;
    read.channel = *channel;
    if (comma == std::string_view::npos)
        return read;
    text.remove_prefix(comma + 1);
    const auto percent = text.ends_with('%') ? ReadNumber(text.substr(0, text.size() - 1)) : std::nullopt;
    if (!percent || *percent < 0 || *percent > kAll)
        return std::nullopt;
    read.percent = *percent;
    return read;
}

std::string WhyNoPicture(SessionRunner &run) {
    const std::string missing = run.Sim().display.fonts.Missing();
    return missing.empty() ? "" : "cannot read the font '" + missing + "': install the package fonts-dejavu-core";
}

Outcome PictureShown(SessionRunner &run, const Step &step) {
    const Tolerance allowed = step.Count() > 1 ? ReadTolerance(step[1]).value_or(Tolerance()) : Tolerance();
    const std::string file = run.ForSetUp().Beside(step[0]);
    const bool isAccepted = run.ForSetUp().options.acceptPictures && !step.negated;
    if (const std::string why = WhyNoPicture(run); !why.empty())
        return Outcome::Unknown(why);
    std::error_code error;
    if (!isAccepted && !fs::exists(file, error))
        return Outcome::Unknown("no picture '" + file + "': --accept writes what is shown now");
    run.Sim().display.wanted = true;
    run.Sim().display.hasStatusLine = false;
    run.RunFrames(1);
    run.Sim().display.hasStatusLine = true;
    if (opengl::IsUsed() && !opengl::Missing().empty())
        return Outcome::Unknown(opengl::Missing());
    const Image &seen = run.Sim().Picture();
    try {
        if (!isAccepted)
            return CompareWith(file, seen, allowed, !step.negated);
        Evidence(file).Remove();
        return Accept(seen, file);
    } catch (const std::runtime_error &fault) {
        return Outcome::Unknown(fault.what());
    }
}

} // namespace host
