#include "exportsource.h"

ExportSource::~ExportSource() = default;
