// What the server's requests and the page's parts hand to one another.

/** ISO 8601, UTC, with 100 ns digits. */
export type Time = string;

export interface Confirmation {
  state: "requested" | "accepted" | "confirmed" | "failed" | "unanswered";
  by: string;
  at: Time;
  comment?: string;
  result?: number;
  text?: string;
}

/** An alarm, a message, or (kind "gap") a stretch of time of which events may be missing. */
export interface HmiEvent {
  id: number | string;
  kind: "alarm" | "message" | "gap";
  name: string;
  domain: string;
  severity: number;
  timeReceived: Time | null;
  timeRaised: Time | null;
  timeCleared: Time | null;
  timeConfirmed: Time | null;
  alarmState: number;
  confirmationState: number;
  active: boolean;
  confirmation?: Confirmation;
  lastKnownSince?: Time;
  parameters: Record<string, any>;
  text?: string;
  eventClassName?: string;
  localizedSourceName?: string;
  causeRemedy?: { cause: string; remedy: string }[];
  details?: Record<string, { text: string; comment: string }>;
  // Of a gap:
  target?: string;
  from?: Time;
  to?: Time | null;
  reason?: string;
  lost?: number | null;
}

/** Events of one class and source, folded into one row. */
export interface Group {
  target: string;
  name: string;
  eventClass: string;
  sourceName?: string;
  severity: number;
  count: number;
  active: number;
  unconfirmed: number;
  newest: HmiEvent;
}

/** Numbers by severity, 0 to 4. */
export interface Counts {
  unconfirmed: number[];
  active: number[];
  oldestUnconfirmed: Time | null;
}

export interface EventPage {
  /** Of the events, or of the groups; these come with the number of their events. */
  total: number;
  events: HmiEvent[];
  textsPending?: number;
  counts?: Counts;
  groups?: Group[];
}

export interface Target {
  name: string;
  address: string;
  state: "good" | "connecting" | "importing" | "lost" | "disabled";
  since: Time;
  error?: { hresult: string; text: string };
  lastNotification?: Time;
  progress?: { done: number; of: number };
  import?: Record<string, any>;
  forgotten: number;
  rejected: number;
  clockSkewMilliseconds?: number;
  counters: Record<string, any>;
}

/** An object of the stream; `type` "missed" is the page's own: load everything again. */
export interface Change {
  type: string;
  seq?: number;
  event?: HmiEvent;
  entry?: any;
  target?: any;
  gap?: HmiEvent;
}

export type LinkState = "connecting" | "connected" | "reconnecting" | "silent";

/** `heard`: the last sign of life of the server. */
export interface Link {
  readonly state: LinkState;
  readonly heard: Date;
  onChange(listener: (link: Link) => void): () => void;
}

export interface User {
  name: string;
  role: "view" | "confirm" | "engineer";
}

export interface Address {
  get(name: string): string;
  all(): Record<string, string>;
  /** Sets these, and removes those that are empty. */
  replace(changes: Record<string, string | number | null>): void;
  /** The same as a step that the browser's Back undoes. */
  go(changes: Record<string, string | number | null>): void;
  /** After Back and Forward. */
  onChange(listener: () => void): () => void;
}

/** What the shell gives to a view. Functions that subscribe return what ends the subscription. */
export interface Context {
  api: typeof import("./shell/api.js");
  onChange(listener: (change: Change) => void): () => void;
  link: Link;
  /** Null where nobody is asked who they are. */
  user: User | null;
  may(role: User["role"]): boolean;
  address: Address;
  /** The locale of texts, as "de-DE". */
  locale(): string;
  targets(): Target[];
  onTargets(listener: () => void): () => void;
  counts(): Counts | null;
  /** Says a line at the foot of the page. */
  notify(text: string, isTrouble?: boolean): void;
  /** Leaves for another view, or for this one with other choices. */
  goTo(view: string, choices?: Record<string, string>): void;
}

/** A module of the page that fills `<main>`. */
export interface View {
  open(root: HTMLElement, context: Context): void | Promise<void>;
  close(): void;
  /** The words are other ones now. */
  languageChanged?(): void;
}
