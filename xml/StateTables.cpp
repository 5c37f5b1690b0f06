#include "xml/DeclarationStates.h"
#include "xml/DocumentStates.h"
#include "xml/InstanceStates.h"
#include "xml/PathStates.h"

// The grammar: the child elements that each state accepts, and the states that read them. All of it
// is constant data; nothing runs at load time.

const TCIMXMLParser::TChildRule TCIMXMLParser::TStateStart::kChildren[] = {
    {"cim", Make<TStateCIM>},
    {"",    nullptr        },
};

const TCIMXMLParser::TChildRule TCIMXMLParser::TStateCIM::kChildren[] = {
    {"declaration", Make<TStateDeclaration>},
    {"message",     Make<TStateMessage>    },
    {"",            nullptr                },
};

// Elements that hold text only, or nothing.

const TCIMXMLParser::TChildRule TCIMXMLParser::TTableState::kNoChildren[] = {
    {"", nullptr},
};

// Declarations.

const TCIMXMLParser::TChildRule TCIMXMLParser::TStateDeclaration::kChildren[] = {
    {"declgroup",          Make<TStateDeclGroup>        },
    {"declgroup.withname", Make<TStateDeclGroupWithName>},
    {"declgroup.withpath", Make<TStateDeclGroupWithPath>},
    {"",                   nullptr                      },
};

const TCIMXMLParser::TChildRule TCIMXMLParser::TStateDeclGroup::kChildren[] = {
    {"namespacepath",         Make<TStateNamespacePath>       },
    {"localnamespacepath",    Make<TStateLocalNamespacePath>  },
    {"qualifier.declaration", Make<TStateQualifierDeclaration>},
    {"value.object",          Make<TStateValueObject>         },
    {"",                      nullptr                         },
};

const TCIMXMLParser::TChildRule TCIMXMLParser::TStateDeclGroupWithName::kChildren[] = {
    {"namespacepath",         Make<TStateNamespacePath>       },
    {"localnamespacepath",    Make<TStateLocalNamespacePath>  },
    {"qualifier.declaration", Make<TStateQualifierDeclaration>},
    {"value.namedobject",     Make<TStateValueNamedObject>    },
    {"",                      nullptr                         },
};

const TCIMXMLParser::TChildRule TCIMXMLParser::TStateDeclGroupWithPath::kChildren[] = {
    {"value.objectwithpath",      Make<TStateValueObjectWithPath>     },
    {"value.objectwithlocalpath", Make<TStateValueObjectWithLocalPath>},
    {"",                          nullptr                             },
};

const TCIMXMLParser::TChildRule TCIMXMLParser::TStateValueObject::kChildren[] = {
    {"class",    Make<TStateClass>   },
    {"instance", Make<TStateInstance>},
    {"",         nullptr             },
};

const TCIMXMLParser::TChildRule TCIMXMLParser::TStateValueNamedObject::kChildren[] = {
    {"class",        Make<TStateClass>       },
    {"instancename", Make<TStateInstanceName>},
    {"instance",     Make<TStateInstance>    },
    {"",             nullptr                 },
};

const TCIMXMLParser::TChildRule TCIMXMLParser::TStateValueObjectWithPath::kChildren[] = {
    {"classpath",    Make<TStateClassPath>   },
    {"instancepath", Make<TStateInstancePath>},
    {"class",        Make<TStateClass>       },
    {"instance",     Make<TStateInstance>    },
    {"",             nullptr                 },
};

const TCIMXMLParser::TChildRule TCIMXMLParser::TStateValueObjectWithLocalPath::kChildren[] = {
    {"localclasspath",    Make<TStateLocalClassPath>   },
    {"localinstancepath", Make<TStateLocalInstancePath>},
    {"class",             Make<TStateClass>            },
    {"instance",          Make<TStateInstance>         },
    {"",                  nullptr                      },
};

// Requests.

const TCIMXMLParser::TChildRule TCIMXMLParser::TStateMessage::kChildren[] = {
    {"simplereq", Make<TStateSimpleReq>},
    {"multireq",  Make<TStateMultiReq> },
    {"",          nullptr              },
};

const TCIMXMLParser::TChildRule TCIMXMLParser::TStateMultiReq::kChildren[] = {
    {"simplereq", Make<TStateSimpleReq>},
    {"",          nullptr              },
};

const TCIMXMLParser::TChildRule TCIMXMLParser::TStateSimpleReq::kChildren[] = {
    {"imethodcall", Make<TStateIMethodCall>},
    {"",            nullptr                },
};

const TCIMXMLParser::TChildRule TCIMXMLParser::TStateIMethodCall::kChildren[] = {
    {"localnamespacepath", Make<TStateLocalNamespacePath>},
    {"iparamvalue",        Make<TStateIParamValue>       },
    {"",                   nullptr                       },
};

const TCIMXMLParser::TChildRule TCIMXMLParser::TStateIParamValue::kChildren[] = {
    {"class",    Make<TStateClass>   },
    {"instance", Make<TStateInstance>},
    {"",         nullptr             },
};

// Qualifiers and classes.

const TCIMXMLParser::TChildRule TCIMXMLParser::TStateQualifierDeclaration::kChildren[] = {
    {"scope",       Make<TStateScope>     },
    {"value",       Make<TStateValue>     },
    {"value.array", Make<TStateValueArray>},
    {"",            nullptr               },
};

const TCIMXMLParser::TChildRule TCIMXMLParser::TStateQualifier::kChildren[] = {
    {"value",       Make<TStateValue>     },
    {"value.array", Make<TStateValueArray>},
    {"",            nullptr               },
};

const TCIMXMLParser::TChildRule TCIMXMLParser::TStateClass::kChildren[] = {
    {"qualifier",          Make<TStateQualifier>            },
    {"property",           Make<TStatePropertyDecl>         },
    {"property.array",     Make<TStatePropertyArrayDecl>    },
    {"property.reference", Make<TStatePropertyReferenceDecl>},
    {"method",             Make<TStateMethod>               },
    {"",                   nullptr                          },
};

const TCIMXMLParser::TChildRule TCIMXMLParser::TStatePropertyDecl::kChildren[] = {
    {"qualifier", Make<TStateQualifier>},
    {"value",     Make<TStateValue>    },
    {"",          nullptr              },
};

const TCIMXMLParser::TChildRule TCIMXMLParser::TStatePropertyArrayDecl::kChildren[] = {
    {"qualifier",   Make<TStateQualifier> },
    {"value.array", Make<TStateValueArray>},
    {"",            nullptr               },
};

const TCIMXMLParser::TChildRule TCIMXMLParser::TStatePropertyReferenceDecl::kChildren[] = {
    {"qualifier",       Make<TStateQualifier>     },
    {"value.reference", Make<TStateValueReference>},
    {"",                nullptr                   },
};

// Instances.

const TCIMXMLParser::TChildRule TCIMXMLParser::TStateInstance::kChildren[] = {
    {"qualifier",          Make<TStateQualifier>        },
    {"property",           Make<TStateProperty>         },
    {"property.array",     Make<TStatePropertyArray>    },
    {"property.reference", Make<TStatePropertyReference>},
    {"",                   nullptr                      },
};

const TCIMXMLParser::TChildRule TCIMXMLParser::TStateProperty::kChildren[] = {
    {"qualifier", Make<TStateQualifier>},
    {"value",     Make<TStateValue>    },
    {"",          nullptr              },
};

const TCIMXMLParser::TChildRule TCIMXMLParser::TStatePropertyArray::kChildren[] = {
    {"qualifier",   Make<TStateQualifier> },
    {"value.array", Make<TStateValueArray>},
    {"",            nullptr               },
};

const TCIMXMLParser::TChildRule TCIMXMLParser::TStatePropertyReference::kChildren[] = {
    {"qualifier",       Make<TStateQualifier>     },
    {"value.reference", Make<TStateValueReference>},
    {"",                nullptr                   },
};

// Values.

const TCIMXMLParser::TChildRule TCIMXMLParser::TStateValueArray::kChildren[] = {
    {"value", Make<TStateValue>},
    {"",      nullptr          },
};

const TCIMXMLParser::TChildRule TCIMXMLParser::TStateValueReference::kChildren[] = {
    {"classpath",         Make<TStateClassPath>        },
    {"localclasspath",    Make<TStateLocalClassPath>   },
    {"classname",         Make<TStateClassName>        },
    {"instancepath",      Make<TStateInstancePath>     },
    {"localinstancepath", Make<TStateLocalInstancePath>},
    {"instancename",      Make<TStateInstanceName>     },
    {"",                  nullptr                      },
};

// Paths.

const TCIMXMLParser::TChildRule TCIMXMLParser::TStateNamespacePath::kChildren[] = {
    {"host",               Make<TStateHost>              },
    {"localnamespacepath", Make<TStateLocalNamespacePath>},
    {"",                   nullptr                       },
};

const TCIMXMLParser::TChildRule TCIMXMLParser::TStateLocalNamespacePath::kChildren[] = {
    {"namespace", Make<TStateNamespace>},
    {"",          nullptr              },
};

const TCIMXMLParser::TChildRule TCIMXMLParser::TStateClassPath::kChildren[] = {
    {"namespacepath", Make<TStateNamespacePath>},
    {"classname",     Make<TStateClassName>    },
    {"",              nullptr                  },
};

const TCIMXMLParser::TChildRule TCIMXMLParser::TStateLocalClassPath::kChildren[] = {
    {"localnamespacepath", Make<TStateLocalNamespacePath>},
    {"classname",          Make<TStateClassName>         },
    {"",                   nullptr                       },
};

const TCIMXMLParser::TChildRule TCIMXMLParser::TStateInstancePath::kChildren[] = {
    {"namespacepath", Make<TStateNamespacePath>},
    {"instancename",  Make<TStateInstanceName> },
    {"",              nullptr                  },
};

const TCIMXMLParser::TChildRule TCIMXMLParser::TStateLocalInstancePath::kChildren[] = {
    {"localnamespacepath", Make<TStateLocalNamespacePath>},
    {"instancename",       Make<TStateInstanceName>      },
    {"",                   nullptr                       },
};

const TCIMXMLParser::TChildRule TCIMXMLParser::TStateInstanceName::kChildren[] = {
    {"keybinding",      Make<TStateKeyBinding>    },
    {"keyvalue",        Make<TStateKeyValue>      },
    {"value.reference", Make<TStateValueReference>},
    {"",                nullptr                   },
};

const TCIMXMLParser::TChildRule TCIMXMLParser::TStateKeyBinding::kChildren[] = {
    {"keyvalue",        Make<TStateKeyValue>      },
    {"value.reference", Make<TStateValueReference>},
    {"",                nullptr                   },
};

// sic: no state leads to these three, so VALUE.REFARRAY, VALUE.NAMEDINSTANCE and OBJECTPATH are
// refused wherever they stand.

const TCIMXMLParser::TChildRule TCIMXMLParser::TStateValueRefArray::kChildren[] = {
    {"value.reference", Make<TStateValueReference>},
    {"",                nullptr                   },
};

const TCIMXMLParser::TChildRule TCIMXMLParser::TStateValueNamedInstance::kChildren[] = {
    {"instancename", Make<TStateInstanceName>},
    {"instance",     Make<TStateInstance>    },
    {"",             nullptr                 },
};

const TCIMXMLParser::TChildRule TCIMXMLParser::TStateObjectPath::kChildren[] = {
    {"instancepath", Make<TStateInstancePath>},
    {"classpath",    Make<TStateClassPath>   },
    {"",             nullptr                 },
};
