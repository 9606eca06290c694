#include "run/banner.h"

#include "files/format.h"

namespace {

constexpr StringView kProductTitle = u"Quillon\\Data transfer";
constexpr StringView kMakersNotice = u"Korvex";
constexpr StringView kBuildDate = u"Mar 19 2020";

}  // namespace

// The version numbers come from the build, where the project's version is kept.
String VersionNumber() {
    return Format(u"%d.%02d.%02d", QUILLON_VERSION_MAJOR, QUILLON_VERSION_MINOR,
                  QUILLON_VERSION_BUILD);
}

String BannerLine() {
    const StringView title = kProductTitle.substr(0, kProductTitle.find(u'\\'));
    return Format(u"%s %s [%s], 64 bit. %s", title, VersionNumber(), kBuildDate, kMakersNotice);
}
