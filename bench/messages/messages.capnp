@0xb3f1c0d2a4e59687;

using Cxx = import "/capnp/c++.capnp";
$Cxx.namespace("messages::capnproto");

struct Request {
    command @0 :UInt32;
    radio @1 :UInt32;
    ssid @2 :UInt32;
}

struct Reply {
    record @0 :Data;
    status @1 :UInt32;
}
