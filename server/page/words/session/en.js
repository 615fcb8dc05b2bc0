// Of signing in and out.
export const words = {
  signInTitle: "Please sign in", userName: "Name", password: "Password", signIn: "Sign in",
  signOut: "Sign out", signedIn: "{0} ({1})", role_view: "may look", role_confirm: "may confirm",
  role_engineer: "engineer", wrongPassword: "Name and password do not match.",
  tooManyAttempts: "Too many attempts. Please wait a minute or more.",
  signInFailed: "Signing in failed: {0}",
};
