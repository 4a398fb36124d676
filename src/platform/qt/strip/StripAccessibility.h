#pragma once

namespace glintar::platform {

/// Tells screen readers that the items of strips are buttons and what stands in them pictures. May be called again.
void describeStripToAssistants();

}  // namespace glintar::platform
