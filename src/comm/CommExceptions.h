#pragma once
// Exceptions of the transport and block layers. Plain classes without payload:
// the layer that catches them reports them in its own words.

class TcommTimeoutException {};
class TnoDeviceAttachedException {};
class TinitializationException {};
class TbadInitializationException {};
class TuninitializedCommModeException {};
class TinvalidCommModuleException {};
class TinvalidDataLengthException {};
class ToperationCancelledException {};
