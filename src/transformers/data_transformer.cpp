#include "transformers/data_transformer.h"

#include "base/activity_trail.h"
#include "files/format.h"

namespace DataTransformers {

bool DataTransformer::Create(String& error, const SectionSettings& settings,
                             std::unique_ptr<DataTransformer>&) {
    const ScopedState state(u"DataTransformer::Create");
    error = Format(u"Transformer type '%s' is not supported yet", settings.Text(u"Type"));
    return false;
}

}  // namespace DataTransformers
