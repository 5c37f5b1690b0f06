#include "xml/DocumentStates.h"

#include <algorithm>

namespace {

using TAttributes = TCIMXMLParser::TAttributes;

// "" for an attribute that is missing.
std::string_view ValueOf(const TAttributes& attributes, std::string_view name) {
  const auto found = std::find_if(attributes.begin(), attributes.end(),
                                  [name](const auto& attribute) { return attribute.name == name; });
  return found == attributes.end() ? std::string_view() : found->value;
}

}  // namespace

void TCIMXMLParser::TStateCIM::HandleAttrs(TCIMXMLParser& parser, const TAttributes& attributes) {
  const std::string_view cimVersion = ValueOf(attributes, "cimversion");
  if (cimVersion != "2.0" && cimVersion != "2.8") parser.FatalError("Unknown CIM version");
  const std::string_view dtdVersion = ValueOf(attributes, "dtdversion");
  if (dtdVersion != "2.0" && dtdVersion != "2.1") parser.FatalError("Unknown DTD version");
}

void TCIMXMLParser::TStateMessage::HandleAttrs(TCIMXMLParser& parser,
                                               const TAttributes& attributes) {
  if (ValueOf(attributes, "protocolversion") != "1.0") {
    parser.FatalError("Unknown protocol version");
  }
}

void TCIMXMLParser::TStateMultiReq::StartElement(TCIMXMLParser& parser, std::string_view name,
                                                 const TAttributes& attributes) {
  TTableState::StartElement(parser, name, attributes);
  ++fRequests;
}

void TCIMXMLParser::TStateMultiReq::EndElement(TCIMXMLParser& parser, std::string& name) {
  if (fRequests < 2) parser.FatalError("Invalid MULTIREQ");
  TTableState::EndElement(parser, name);
}

void TCIMXMLParser::TStateIMethodCall::HandleAttrs(TCIMXMLParser& parser,
                                                   const TAttributes& attributes) {
  const std::string_view name = ValueOf(attributes, "name");
  if (name != "CreateClass" && name != "CreateInstance") {
    parser.FatalError("Unexpected IMethodCall method " + std::string(name));
  }
}

void TCIMXMLParser::TStateIParamValue::HandleAttrs(TCIMXMLParser& parser,
                                                   const TAttributes& attributes) {
  const std::string_view name = ValueOf(attributes, "name");
  if (name != "NewClass" && name != "NewInstance") {
    parser.FatalError("Unexpected IParamValue parameter name");
  }
}

void TCIMXMLParser::TObjectState::Hold(std::unique_ptr<TCIMClass> cls) {
  fClass = cls.get();
  fElement = std::move(cls);
}

void TCIMXMLParser::TObjectState::Hold(std::unique_ptr<TCIMInstance> instance) {
  fClass = nullptr;
  fElement = std::move(instance);
}

void TCIMXMLParser::TObjectState::EndElement(TCIMXMLParser& parser, std::string& name) {
  if (!fElement) parser.FatalError("CIM element syntax error");
  fElement->AddToContainer();
  fElement.release();
  if (fClass) Collect(parser, *fClass);
  TTableState::EndElement(parser, name);
}

void TCIMXMLParser::TObjectState::Collect(TCIMXMLParser& parser, TCIMClass& cls) {
  parser.fClassesCollected.push_back(&cls);
}
