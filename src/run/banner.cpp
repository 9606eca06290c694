#include "run/banner.h"

#include "files/format.h"

namespace {

constexpr StringView kProductTitle = u"Quillon\\Data transfer";
constexpr StringView kMakersNotice = u"Korvex";
constexpr StringView kBuildDate = u"Mar 19 2020";

}  // namespace

// The version numbers come from the build, where the project's version is kept.
String BannerLine() {
    const StringView title = kProductTitle.substr(0, kProductTitle.find(u'\\'));
    const String version = Format(u"%d.%02d.%02d [%s], 64 bit", QUILLON_VERSION_MAJOR,
                                  QUILLON_VERSION_MINOR, QUILLON_VERSION_BUILD, kBuildDate);
    return Format(u"%s %s. %s", title, version, kMakersNotice);
}
