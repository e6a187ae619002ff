// SPDX-License-Identifier: GPL-3.0-or-later
#include "ekdatapr/CoderTypes.h"
#include "ekdatapr/EkDataPr.h"

#include <algorithm>
#include <array>
#include <sndfile.h>
#include <vector>

namespace ek {

namespace {

struct FileType {
    std::string Label;
    std::vector<std::string> Extensions;
};

struct CommonExtensions {
    int Container;
    const char* Label;
    std::vector<std::string> Extensions;
};

// What files of a type are really called, and what people call the type. The library itself knows one extension each.
const std::vector<CommonExtensions>& Common()
{
    static const std::vector<CommonExtensions> types = {
        {SF_FORMAT_WAV, "WAV", {"wav"}},
        {SF_FORMAT_RF64, "RF64", {"rf64"}},
        {SF_FORMAT_W64, "Wave64", {"w64"}},
        {SF_FORMAT_AIFF, "AIFF", {"aiff", "aif", "aifc"}},
        {SF_FORMAT_AU, "AU", {"au", "snd"}},
        {SF_FORMAT_CAF, "CAF", {"caf"}},
        {SF_FORMAT_FLAC, "FLAC", {"flac"}},
        {SF_FORMAT_OGG, "Ogg", {"ogg", "oga", "opus"}},
        {SF_FORMAT_MPEG, "MPEG", {"mp3", "mp2", "mp1", "m1a"}},
        {SF_FORMAT_SVX, "Amiga IFF", {"iff", "8svx", "svx", "16sv"}},
        {SF_FORMAT_NIST, "NIST Sphere", {"nist", "sph"}},
    };
    return types;
}

// Types that hide behind another one's content, or that no file of its own can hold.
constexpr std::array Unlisted = {SF_FORMAT_RAW, SF_FORMAT_SD2, SF_FORMAT_WAVEX};

FileType TypeOf(const SF_FORMAT_INFO& info)
{
    const auto common = std::ranges::find(Common(), info.format, &CommonExtensions::Container);
    if (common != Common().end())
        return {common->Label, common->Extensions};
    return {info.name, {info.extension}};
}

std::vector<FileType> ReadableTypes()
{
    std::vector<FileType> types;
    int count = 0;
    sf_command(nullptr, SFC_GET_FORMAT_MAJOR_COUNT, &count, sizeof count);
    for (int i = 0; i < count; ++i) {
        SF_FORMAT_INFO info{};
        info.format = i;
        sf_command(nullptr, SFC_GET_FORMAT_MAJOR, &info, sizeof info);
        if (std::ranges::find(Unlisted, info.format) == Unlisted.end())
            types.push_back(TypeOf(info));
    }
    return types;
}

std::vector<FileType> WritableTypes()
{
    std::vector<FileType> types;
    for (const CoderType& type : CoderTypes())
        types.push_back({type.Label, {type.Extensions.begin(), type.Extensions.end()}});
    return types;
}

std::string Patterns(const std::vector<std::string>& extensions)
{
    std::string patterns;
    for (const std::string& extension : extensions)
        patterns += (patterns.empty() ? "*." : ";*.") + extension;
    return patterns;
}

std::string Pairs(const std::vector<FileType>& types)
{
    std::string filter;
    for (const FileType& type : types) {
        const std::string patterns = Patterns(type.Extensions);
        filter += type.Label + " (" + patterns + ")|" + patterns + "|";
    }
    return filter;
}

} // namespace

std::string EkGetSupportedFileExtensions()
{
    const std::vector<FileType> types = ReadableTypes();
    std::vector<std::string> all;
    for (const FileType& type : types)
        all.insert(all.end(), type.Extensions.begin(), type.Extensions.end());
    return "All Supported Files|" + Patterns(all) + "|" + Pairs(types);
}

std::string EkGetSupportedCoderExtensions()
{
    return Pairs(WritableTypes());
}

} // namespace ek
