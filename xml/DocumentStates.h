#pragma once

#include <memory>

#include "xml/TParseState.h"
#include "zelcore/TCIMClass.h"
#include "zelcore/TCIMInstance.h"

// The frame of a document: declarations and requests, down to the object states, which own a new
// class or instance until they hand it to the model.

class TCIMXMLParser::TStateStart : public TTableState {
 public:
  TStateStart() : TTableState(kChildren) {}
  static const TChildRule kChildren[];
};

class TCIMXMLParser::TStateCIM : public TTableState {
 public:
  explicit TStateCIM(TCIMXMLParser&) : TTableState(kChildren) {}
  static const TChildRule kChildren[];
  void HandleAttrs(TCIMXMLParser& parser, const TAttributes& attributes) override;
};

class TCIMXMLParser::TStateDeclaration : public TTableState {
 public:
  explicit TStateDeclaration(TCIMXMLParser&) : TTableState(kChildren) {}
  static const TChildRule kChildren[];
};

class TCIMXMLParser::TStateDeclGroup : public TTableState {
 public:
  explicit TStateDeclGroup(TCIMXMLParser&) : TTableState(kChildren) { fAwaited.known = true; }
  static const TChildRule kChildren[];
};

class TCIMXMLParser::TStateDeclGroupWithName : public TTableState {
 public:
  explicit TStateDeclGroupWithName(TCIMXMLParser&) : TTableState(kChildren) {}
  static const TChildRule kChildren[];
};

class TCIMXMLParser::TStateDeclGroupWithPath : public TTableState {
 public:
  explicit TStateDeclGroupWithPath(TCIMXMLParser&) : TTableState(kChildren) {}
  static const TChildRule kChildren[];
};

class TCIMXMLParser::TStateMessage : public TTableState {
 public:
  explicit TStateMessage(TCIMXMLParser&) : TTableState(kChildren) {}
  static const TChildRule kChildren[];
  void HandleAttrs(TCIMXMLParser& parser, const TAttributes& attributes) override;
};

class TCIMXMLParser::TStateMultiReq : public TTableState {
 public:
  explicit TStateMultiReq(TCIMXMLParser&) : TTableState(kChildren) {}
  static const TChildRule kChildren[];
  void StartElement(TCIMXMLParser& parser, std::string_view name,
                    const TAttributes& attributes) override;
  void EndElement(TCIMXMLParser& parser, std::string& name) override;
  void HandleAttrs(TCIMXMLParser&, const TAttributes&) override { fRequests = 0; }

 private:
  unsigned int fRequests = 0;
};

class TCIMXMLParser::TStateSimpleReq : public TTableState {
 public:
  explicit TStateSimpleReq(TCIMXMLParser&) : TTableState(kChildren) {}
  static const TChildRule kChildren[];
};

class TCIMXMLParser::TStateIMethodCall : public TTableState {
 public:
  explicit TStateIMethodCall(TCIMXMLParser&) : TTableState(kChildren) {}
  static const TChildRule kChildren[];
  void HandleAttrs(TCIMXMLParser& parser, const TAttributes& attributes) override;
};

// Holds the new class or instance of its child. The path that may stand before is dropped: the
// object tells its own.
class TCIMXMLParser::TObjectState : public TTableState, public IPathSlot {
 public:
  explicit TObjectState(const TChildRule* children) : TTableState(children) {
    fAwaited.known = true;
  }
  void Hold(std::unique_ptr<TCIMClass> cls);
  void Hold(std::unique_ptr<TCIMInstance> instance);
  void EndElement(TCIMXMLParser& parser, std::string& name) override;

 protected:
  virtual void Collect(TCIMXMLParser& parser, TCIMClass& cls);

 private:
  std::unique_ptr<ICIMElement> fElement;
  TCIMClass* fClass = nullptr;  // the element, if it is a class
};

class TCIMXMLParser::TStateValueObject : public TObjectState {
 public:
  explicit TStateValueObject(TCIMXMLParser&) : TObjectState(kChildren) {}
  static const TChildRule kChildren[];
};

class TCIMXMLParser::TStateValueNamedObject : public TObjectState {
 public:
  explicit TStateValueNamedObject(TCIMXMLParser&) : TObjectState(kChildren) {}
  static const TChildRule kChildren[];
};

class TCIMXMLParser::TStateValueNamedInstance : public TObjectState {
 public:
  explicit TStateValueNamedInstance(TCIMXMLParser&) : TObjectState(kChildren) {}
  static const TChildRule kChildren[];
};

class TCIMXMLParser::TStateValueObjectWithPath : public TObjectState {
 public:
  explicit TStateValueObjectWithPath(TCIMXMLParser&) : TObjectState(kChildren) {}
  static const TChildRule kChildren[];
};

class TCIMXMLParser::TStateValueObjectWithLocalPath : public TObjectState {
 public:
  explicit TStateValueObjectWithLocalPath(TCIMXMLParser&) : TObjectState(kChildren) {}
  static const TChildRule kChildren[];
};

class TCIMXMLParser::TStateIParamValue : public TObjectState {
 public:
  explicit TStateIParamValue(TCIMXMLParser&) : TObjectState(kChildren) {}
  static const TChildRule kChildren[];
  void HandleAttrs(TCIMXMLParser& parser, const TAttributes& attributes) override;

 protected:
  void Collect(TCIMXMLParser&, TCIMClass&) override {}  // sic: requested classes are not collected
};
