#include "kxspatialgraph/model/GraphAttribute.h"

int GraphAttribute::sId = 0;

GraphAttribute::GraphAttribute(KxSpatialGraph* graph, const char* name, PrimType type, int nDataVar)
    : graph_(graph),
      primType_(type),
      nDataVar_(nDataVar),
      name_(name),
      id_(sId++),
      elementSize_(type.getSize() * static_cast<size_t>(nDataVar)) {}

GraphAttribute::~GraphAttribute() = default;
