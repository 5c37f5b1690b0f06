#include "zelcore/ICIMElement.h"

ICIMElement::~ICIMElement() = default;
