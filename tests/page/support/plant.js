// A small plant whose runtimes do nothing by themselves.
export const filler = "5.10.20.30.1.1";
export const packer = "5.10.20.31.1.1";
export const machine = "{3C5E0A71-84D2-4B1F-9E60-2A7D41C8F001}";

const alarm = (severity, english, german, further = {}) =>
  ({ kind: "alarm", severity, confirm: true, text: { 1033: english, 1031: german }, ...further });

const eventClass = {
  name: { 1033: "Filling machine", 1031: "Füllmaschine" },
  events: {
    1: alarm(3, "Product tank level below {0} %", "Füllstand im Produkttank unter {0} %", {
      causeRemedy: [{
        id: "1",
        cause: { 1033: "The level sensor is dirty.", 1031: "Der Füllstandsensor ist verschmutzt." },
        remedy: { 1033: "Clean the sensor.", 1031: "Sensor reinigen." },
      }],
      details: [{ key: "Device", text: { 1033: "Level sensor LT-101" },
        comment: { 1033: "On top of the tank" } }],
    }),
    2: alarm(4, "Emergency stop pressed at the {0} panel", "Not-Halt am Bedienpult {0} betätigt"),
    3: alarm(2, "No bottles at the infeed", "Keine Flaschen am Einlauf", { confirm: false }),
    4: alarm(3, "Filling valve {0} does not close", "Füllventil {0} schließt nicht"),
    5: alarm(1, "{0}", "{0}"),
    10: { kind: "message", severity: 1, text: { 1033: "Batch {0} started", 1031: "Charge {0}" } },
  },
};

export const plant = {
  localNetId: "5.10.20.1.1.1",
  runtimes: Object.fromEntries([filler, packer].map((netId) =>
    [netId, { eventClasses: { [machine]: eventClass }, sources: {}, logged: [], timeline: [] }])),
};

export const config = {
  TIMEOUT: "PT2S", LIMIT_EVENT_COUNT: 1000, PRELOAD_TRANSLATIONS: false,
  TARGET_SYSTEMS: {
    Filler: { ADDRESS: filler, ENABLED: true }, Packer: { ADDRESS: packer, ENABLED: true },
  },
};

/** An action that raises an alarm; `further`: arguments, source, count ... */
export const raise = (name, event, further = {}) =>
  ({ do: "raise", alarm: name, class: machine, event, arguments: [12], ...further });
