#include "consumers/made_files.h"

#include <algorithm>
#include <cstddef>
#include <span>

#include "files/format.h"
#include "files/text_writer.h"

namespace DataConsumers {
namespace {

using platform::OutputFile;
using platform::Replacement;

bool CopyContent(ErrorRecord& error, const String& name, OutputFile& to) {
    constexpr std::size_t kPieceBytes = 262'144;
    const auto from = platform::InputFile::Open(error, name);
    if (!from) return false;
    std::vector<std::byte> piece(kPieceBytes);
    while (const std::size_t count = from->Read(piece)) {
        if (!to.Write(error, std::span(piece).first(count))) return false;
    }
    return !from->Failed();
}

String RefusalText(Replacement::Refusal refusal, ErrorRecord& reason, const String& name) {
    const String part = Replacement::PartNameOf(name);
    switch (refusal) {
        case Replacement::Refusal::Held:
            return Format(u"The part file '%s' is in use by another run.", part);
        case Replacement::Refusal::NoPart:
            return Format(
                u"Could not make the part file '%s': %s. OnFailure=Keep writes without one.", part,
                reason.text);
        case Replacement::Refusal::NotWritable:
            break;
    }
    TellUnwritable(reason);
    return reason.text;
}

String TwiceText(const String& name) {
    return Format(
        u"Two result sets would make the file '%s'. Overwrite=0 puts one behind the other.", name);
}

}  // namespace

void MadeFiles::Start(const Policy& policy) {
    policy_ = policy;
    written_.clear();
    parts_.clear();
    latest_ = nullptr;
}

bool MadeFiles::Replaces(const String& name) const {
    return policy_.on_failure == OnFailure::Restore && Replacement::AppliesTo(name);
}

std::unique_ptr<OutputFile> MadeFiles::Open(String& error, const String& name, bool& goes_on) {
    latest_ = nullptr;
    return Replaces(name) ? OpenPart(error, name, goes_on) : OpenItself(error, name, goes_on);
}

std::unique_ptr<OutputFile> MadeFiles::OpenItself(String& error, const String& name,
                                                  bool& goes_on) {
    const bool once = policy_.once && !policy_.append;
    const auto there = once ? platform::IdentityOf(name) : std::nullopt;
    if (there && std::find(written_.begin(), written_.end(), *there) != written_.end()) {
        error = TwiceText(name);
        return nullptr;
    }
    ErrorRecord reason;
    bool existed = false;
    auto file = OpenForWriting(reason, name, policy_.append, existed);
    goes_on = policy_.append && existed;
    if (!file) {
        error = reason.text;
    } else if (const auto made =
                   once && file->IsRegular() ? platform::IdentityOf(name) : std::nullopt) {
        written_.push_back(*made);
    }
    return file;
}

std::unique_ptr<OutputFile> MadeFiles::OpenPart(String& error, const String& name, bool& goes_on) {
    const auto same = std::find_if(parts_.begin(), parts_.end(),
                                   [&](const Part& part) { return part.file->IsFor(name); });
    goes_on = policy_.append;
    if (same == parts_.end()) return OpenNew(error, name, goes_on);
    if (policy_.once && !policy_.append) {
        error = TwiceText(name);
        return nullptr;
    }
    ErrorRecord reason;
    auto file = OpenAgain(reason, *same);
    if (!file) {
        TellUnwritable(reason);
        error = reason.text;
    }
    return file;
}

std::unique_ptr<OutputFile> MadeFiles::OpenAgain(ErrorRecord& error, Part& part) {
    latest_ = &part;
    if (!policy_.append && !part.file->Empty(error)) return nullptr;
    return part.file->Open(error);
}

std::unique_ptr<OutputFile> MadeFiles::OpenNew(String& error, const String& name, bool& goes_on) {
    ErrorRecord reason;
    auto refusal = Replacement::Refusal::NoPart;
    auto part = Replacement::Begin(reason, refusal, name);
    auto file = part ? part->Open(reason) : nullptr;
    goes_on = policy_.append && part && part->HasOld();
    const bool copied = !goes_on || !file || CopyContent(reason, name, *file);
    if (!file || !copied) {
        error = RefusalText(part ? Replacement::Refusal::NoPart : refusal, reason, name);
        return nullptr;
    }
    parts_.push_back({name, std::move(part)});
    latest_ = &parts_.back();
    return file;
}

bool MadeFiles::EndFile(String& error) {
    ErrorRecord reason;
    if (latest_ == nullptr || latest_->file->FlushToDisk(reason)) return true;
    error = Format(u"Could not write to file '%s': %s", latest_->name, reason.text);
    return false;
}

bool MadeFiles::Commit(String& error) {
    String done;
    for (Part& part : parts_) {
        ErrorRecord reason;
        if (!part.file->PutInPlace(reason)) {
            error = Format(u"Could not replace file '%s': %s", part.name, reason.text);
            if (!done.empty()) error += Format(u". Replaced before: %s.", done);
            parts_.clear();
            return false;
        }
        done += Format(u"%s'%s'", done.empty() ? u"" : u", ", part.name);
    }
    parts_.clear();
    return true;
}

}  // namespace DataConsumers
