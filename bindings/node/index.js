// The management library for node: adapters, their properties, and every export by its name.
'use strict';

const generated = require('./generated.js');
const { constants, statusNames } = generated;

// A status other than success.
class StatusError extends Error {
    constructor(what, status, text) {
        const name = statusNames[status] || `Windows error ${status}`;
        super(`${what}: ${text} (${name})`);
        this.name = 'StatusError';
        this.status = status;
        this.statusName = name;
    }
}

// A text of a record: the characters before the first zero.
function textOf(field) {
    if (typeof field === 'string') return field;
    const end = field.indexOf(0);
    return Buffer.from(end < 0 ? field : field.slice(0, end)).toString('latin1');
}

// A world wide name as people write it.
function nameOf(bytes) {
    return Array.from(bytes, (byte) => byte.toString(16).padStart(2, '0')).join(':');
}

// koffi knows a type by its name, once for all libraries.
let declared;

// VXMGMT.DLL, loaded from the path given.
class Library {
    constructor(path = 'VXMGMT.DLL', koffi = require('koffi')) {
        this.koffi = koffi;
        this.types = declared = declared || generated.declareTypes(koffi);
        this.functions = generated.declareFunctions(koffi, koffi.load(path), this.types);
    }

    errorString(status) {
        return this.functions.HXGetErrorString(status).trim();
    }

    // Calls an export that returns a status; anything but success becomes a StatusError.
    check(name, ...args) {
        const status = this.functions[name](...args);
        if (status !== constants.HXMGT_SUCCESS) {
            throw new StatusError(name, status, this.errorString(status));
        }
    }

    // Calls an export whose last argument is a record to fill, and returns the record. Fields that no
    // driver writes are zero, or what preset, a function, puts into the buffer first.
    fetch(name, type, args, preset = () => {}) {
        const buffer = Buffer.alloc(generated.layout[type].size);
        preset(buffer, generated.layout[type].offsets);
        this.check(name, ...args, buffer);
        return this.koffi.decode(buffer, this.types[type]);
    }

    // The adapters' ports in the order of their SCSI ports. Close each, or use Library.each.
    open(index) {
        return this.#opened('HXOpenDevice', index);
    }

    openScsiPort(scsiPort) {
        return this.#opened('HXOpenScsiPort', scsiPort);
    }

    // Calls visit with every port in turn, open, and closes it. failed is told of a port that cannot be
    // opened; without it the error ends the round.
    each(visit, failed = (error) => { throw error; }) {
        for (let index = 0; ; ++index) {
            let adapter;
            try {
                adapter = this.open(index);
            } catch (error) {
                if (error.status === constants.HXMGT_DEVICE_NOT_FOUND) return;
                failed(error, index);
                continue;
            }
            try {
                visit(adapter);
            } finally {
                adapter.close();
            }
        }
    }

    #opened(name, number) {
        const handle = new Uint32Array(1);
        this.check(name, number, handle);
        return new Adapter(this, handle[0]);
    }
}

// An open port of an adapter.
class Adapter {
    constructor(library, handle) {
        this.library = library;
        this.handle = handle;
    }

    close() {
        if (this.handle !== 0) {
            this.library.functions.HXCloseDevice(this.handle);
            this.handle = 0;
        }
    }

    node() {
        return this.library.fetch('HXGetHbaDeviceNodeProperty', 'HX_NODE_PROPERTY', [this.handle]);
    }

    // A driver of the older generation writes the state only when the link is down.
    port() {
        return this.library.fetch('HXGetHbaDevicePortProperty', 'HX_PORT_PROPERTY', [this.handle, 0],
            (buffer, offsets) => buffer.writeUInt8(constants.HX_PORT_STATE_ONLINE, offsets.state));
    }

    chip() {
        return this.library.fetch('HXGetHbaDeviceChipProperty', 'HX_CHIP_PROPERTY', [this.handle]);
    }

    statistics() {
        return this.library.fetch('HXGetStatistics', 'HX_STATISTICS', [this.handle, 0]);
    }

    discoveredPorts() {
        const ports = [];
        for (let index = 0; index < this.port().discoveredDevices; ++index) {
            ports.push(this.library.fetch('HXGetDiscPortProperty', 'HX_DISCOVERED_PORT',
                [this.handle, 0, index, 0]));
        }
        return ports;
    }
}

module.exports = { ...generated, Adapter, Library, StatusError, nameOf, textOf };
