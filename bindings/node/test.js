// Runs on emulated adapters, which scripts/bindings_test.sh starts: node test.js LIBRARY
'use strict';

const assert = require('assert');
const koffi = require('koffi');
const { Library, StatusError, constants, layout, nameOf, textOf } = require('./index.js');

const library = new Library(process.argv[2], koffi);
for (const [name, { size, offsets }] of Object.entries(layout)) {
    assert.strictEqual(koffi.sizeof(library.types[name]), size, name);
    for (const [field, offset] of Object.entries(offsets)) {
        assert.strictEqual(koffi.offsetof(library.types[name], field), offset, `${name}.${field}`);
    }
}
assert.strictEqual(library.functions.HXGetVersion(null, 0), constants.HX_VERSION_PACKED);
assert.throws(() => library.open(63), (error) => error instanceof StatusError &&
    error.statusName === 'HXMGT_DEVICE_NOT_FOUND' && error.message.includes('Device not found'));
assert.throws(() => library.openScsiPort(40), { status: 2, statusName: 'Windows error 2' });

library.each((adapter) => {
    const node = adapter.node();
    const port = adapter.port();
    const sees = adapter.discoveredPorts().map((one) => nameOf(one.device.portName));
    console.log(nameOf(port.portName), textOf(node.serialNumber), textOf(node.firmwareVersion),
        port.state, adapter.chip().deviceId.toString(16), sees.length, sees[0]);
});

// A callback of the library into the program.
const adapter = library.open(0);
const calls = [];
const progress = koffi.register((context, region, done, total) => {
    calls.push([region, done, total]);
    return constants.HXMGT_SUCCESS;
}, koffi.pointer(library.types.HX_FLASH_PROGRESS));
library.check('HXSetFlashProgress', adapter.handle, progress, null);
library.check('HXGetOptionRomEx', adapter.handle, 0, Buffer.alloc(262144), 262144,
    constants.HX_REGION_BOOT_CODE);
adapter.close();
console.log('progress', calls.length, calls[calls.length - 1].join(' '));
assert.throws(() => adapter.node(), { statusName: 'HXMGT_INVALID_HANDLE' });
